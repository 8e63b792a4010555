// Two halves: text to fields, with the recovery from a quote that was never closed; and fields to a
// checked leg, for which the layout is told by the row itself.
#include "desktop/cdr/CdrFile.h"

#include <csv.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "desktop/cdr/TextHash.h"
#include "desktop/platform/Text.h"
#include "desktop/platform/WholeNumber.h"

namespace desk {
namespace {

using Fields = std::vector<std::string>;

constexpr std::size_t kTextBytesMax = 1024;                 // of a name or number
constexpr std::size_t kRowBytesMax = 16 * 1024 * 1024 + 1;  // with the end of its last line
constexpr std::size_t kPartBytes = kRowBytesMax + 1;  // as much text shows that a row is too long
constexpr std::size_t kRowLinesMax = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// libcsv's parser on one record, and what it has found.
struct RecordParser : csv_parser {
  explicit RecordParser(char separator) {
    csv_init(this, 0);
    csv_set_delim(this, static_cast<unsigned char>(separator));
    csv_set_blk_size(this, 4096);
    // ReadLine() takes the carriage return of a line's end; any other is part of its field.
    csv_set_term_func(this, [](unsigned char c) { return c == CSV_LF ? 1 : 0; });
  }
  ~RecordParser() { csv_free(this); }
  RecordParser(const RecordParser&) = delete;
  RecordParser& operator=(const RecordParser&) = delete;

  // A quote that was never closed would swallow the rows behind it. So stray quotes, which some
  // writers leave in names, pass in the first line only: where a field runs on they show that it
  // should have ended. False for such a quote.
  bool Take(const std::string& line) {
    const auto done = csv_parse(this, line.data(), line.size(), OnField, OnRow, this);
    csv_set_opts(this, CSV_STRICT);
    return done == line.size();
  }

  static void OnField(void* text, std::size_t size, void* self) noexcept {
    static_cast<RecordParser*>(self)->fields.emplace_back(static_cast<const char*>(text), size);
  }
  static void OnRow(int, void* self) { static_cast<RecordParser*>(self)->complete = true; }

  Fields fields;
  bool complete = false;
};

bool IsBlank(const std::string& line) { return line.find_first_not_of(" \t\n") == line.npos; }

std::string FromLatin1(const std::string& text) {
  std::string utf8;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x80) utf8 += static_cast<char>(0xC0 | code >> 6);
    utf8 += static_cast<char>(code >= 0x80 ? 0x80 | (code & 0x3F) : code);
  }
  return utf8;
}

bool SameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Of Master.csv.
constexpr std::size_t kSrc = 1, kDst = 2, kClid = 4, kChannel = 5, kDstchannel = 6, kLastapp = 7,
                      kStart = 9, kEnd = 11, kDuration = 12, kBillsec = 13, kDisposition = 14,
                      kUniqueid = 16;
constexpr std::size_t kFewestColumns = kUniqueid - 1;

// The columns of Master.csv in a row of either layout. The custom one has clid in front of all, and
// what follows on clid in Master.csv one column earlier; uniqueid is at its place again.
struct Columns {
  const Fields& fields;
  bool custom;

  std::string_view operator[](std::size_t column) const {
    const bool moved = custom && column >= kClid && column < kUniqueid;
    const std::size_t at = !moved ? column : column == kClid ? 0 : column - 1;
    return at < fields.size() ? std::string_view(fields[at]) : std::string_view();
  }
  std::size_t Least() const { return custom ? kFewestColumns : kUniqueid; }
};

bool HasTimeShape(std::string_view text) {
  constexpr std::string_view kShape = "0000-00-00 00:00:00";
  return std::equal(text.begin(), text.end(), kShape.begin(), kShape.end(), [](char c, char like) {
    return like == '0' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == like;
  });
}

std::optional<bool> Answered(std::string_view disposition) {
  if (SameWord(disposition, "ANSWERED")) return true;
  for (const char* word : {"NO ANSWER", "NOANSWER", "BUSY", "FAILED", "CONGESTION"}) {
    if (SameWord(disposition, word)) return false;
  }
  return std::nullopt;
}

// How many of the three columns that stand elsewhere in the other layout hold what they should.
int Fit(const Columns& row) {
  return int{HasTimeShape(row[kStart])} + int{HasTimeShape(row[kEnd])} +
         int{Answered(row[kDisposition]).has_value()};
}

bool IsHeader(const Columns& row) {
  return SameWord(row[kSrc], "src") && SameWord(row[kStart], "start") &&
         SameWord(row[kDisposition], "disposition");
}

std::string OneLine(std::string_view text, char forControls) {
  std::string line(text);
  const auto isControl = [](unsigned char c) { return std::iscntrl(c) != 0; };
  std::replace_if(line.begin(), line.end(), isControl, forControls);
  return line;
}

// A field as a reason shows it: short and on one line.
std::string Quoted(std::string_view field) {
  constexpr std::size_t kShown = 40;
  const bool cut = field.size() > kShown;
  std::size_t size = std::min(field.size(), kShown);
  while (cut && size > 0 && (static_cast<unsigned char>(field[size]) & 0xC0) == 0x80) --size;
  return "\"" + OneLine(field.substr(0, size), '?') + (cut ? "...\"" : "\"");
}

// Why a row is bad.
struct Fault {
  std::string reason;
};

void Check(bool good, const char* reason, std::string_view field) {
  if (!good) throw Fault{reason + (": " + Quoted(field))};
}

// As UTC: local time moves an hour of its own when clocks go forward. A day too many moves the
// month.
bool IsInCalendar(std::tm time) {
  const std::tm read = time;
  timegm(&time);
  return time.tm_mon == read.tm_mon && time.tm_sec == read.tm_sec;
}

int Start(std::string_view text) {
  using Limits = std::numeric_limits<int>;
  Check(HasTimeShape(text), "start is not a time as YYYY-MM-DD hh:mm:ss", text);
  std::tm local{};
  const char* const end = strptime(std::string(text).c_str(), "%Y-%m-%d %H:%M:%S", &local);
  Check(end != nullptr && IsInCalendar(local), "start is not in the calendar", text);
  local.tm_isdst = -1;
  local.tm_wday = -1;  // set by mktime() when it succeeds; -1 as its result is a time, too
  const std::time_t time = std::mktime(&local);
  Check(local.tm_wday >= 0 && time >= Limits::min() && time <= Limits::max(),
        "start is outside the years that the phone can store", text);
  return static_cast<int>(time);
}

int Seconds(std::string_view text, const char* reason) {
  const auto number = WholeNumber(text, 0);
  Check(number.has_value(), reason, text);
  return *number;
}

// Text as a phone's line shows it: control characters would break lists and the history file.
std::string Shown(std::string_view text) {
  const std::string line = OneLine(text, ' ');
  const std::size_t first = line.find_first_not_of(' ');
  if (first == line.npos) return {};
  return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789+*#") == text.npos;
}

std::string Unquoted(const std::string& name) {
  if (name.empty() || name.front() != '"') return name;
  const bool closed = name.size() > 1 && name.back() == '"';
  return Shown(name.substr(1, name.size() - (closed ? 2 : 1)));
}

// clid is `"Name" <number>`, or what there is of the two alone.
void ReadCaller(const Columns& row, CdrLeg* leg) {
  const std::string clid = Shown(row[kClid]);
  const std::size_t bracket = clid.rfind('<');
  const std::string name = Shown(clid.substr(0, bracket));
  std::string number = IsNumber(name) ? name : "";
  if (bracket != clid.npos) {
    number = Shown(clid.substr(bracket + 1, clid.find('>', bracket) - bracket - 1));
  }
  leg->src = Shown(row[kSrc]);
  if (leg->src.empty()) leg->src = number;
  leg->callerName = Unquoted(name);
  if (leg->callerName == leg->src || leg->callerName == number) leg->callerName.clear();
}

// An id as the PBX makes them: an optional name of the system and "-", seconds since 1970, ".",
// count.
bool IsCallId(std::string_view text) {
  const std::string_view id = text.substr(text.rfind('-') + 1);
  const std::size_t dot = id.find('.');
  constexpr std::string_view kDigits = "0123456789";
  return dot != id.npos && dot >= 9 && dot + 1 < id.size() &&
         id.find_first_not_of(kDigits) == dot && id.find_first_not_of(kDigits, dot + 1) == id.npos;
}

// The columns behind amaflags depend on the PBX's settings. A lone one behind Master.csv's may as
// well be the userfield, and linkedid stands in several places: there, an id must look like one.
void ReadIds(const Columns& row, CdrLeg* leg) {
  const bool lone = !row.custom && row.fields.size() == kUniqueid + 1;
  const std::string_view uniqueid = row[kUniqueid];
  if (!uniqueid.empty() && (!lone || IsCallId(uniqueid))) leg->uniqueid = TextHash(uniqueid);
  leg->record = leg->uniqueid;
  for (std::size_t i = 0; leg->uniqueid == 0 && i < row.fields.size(); ++i) {
    leg->record = TextHash(row.fields[i], leg->record + 1);
  }
  if (row.fields.size() <= kUniqueid) return;
  const auto linked = std::find_if(row.fields.begin() + kUniqueid + 1, row.fields.end(), IsCallId);
  if (linked != row.fields.end()) leg->linkedid = TextHash(*linked);
}

// One of the three columns that tell the layout may be wrong, or both times, so that the fault can
// be named.
Columns FindLayout(const Fields& fields) {
  const Columns master = {fields, false};
  const Columns custom = {fields, true};
  const Columns& better = Fit(custom) > Fit(master) ? custom : master;
  const bool known = Fit(better) >= 2 || Answered(better[kDisposition]);
  if (known && fields.size() >= better.Least()) return better;
  const bool tooFew = known || fields.size() < custom.Least();
  throw Fault{std::to_string(fields.size()) + (fields.size() == 1 ? " column" : " columns") +
              (tooFew ? ", too few for a call record" : ", in no known order")};
}

Fields InUtf8(Fields fields) {
  if (!std::all_of(fields.begin(), fields.end(), IsUtf8)) {
    std::transform(fields.begin(), fields.end(), fields.begin(), FromLatin1);
  }
  return fields;
}

CdrLeg ReadLeg(const Fields& fields) {
  const Columns row = FindLayout(fields);
  const std::optional<bool> answered = Answered(row[kDisposition]);
  Check(answered.has_value(), "unknown disposition", row[kDisposition]);
  CdrLeg leg;
  leg.answered = *answered;
  leg.start = Start(row[kStart]);
  leg.duration = Seconds(row[kDuration], "duration is not a number of seconds");
  leg.billsec = Seconds(row[kBillsec], "billsec is not a number of seconds");
  leg.channel = row[kChannel];
  leg.dstchannel = row[kDstchannel];
  leg.lastapp = row[kLastapp];
  leg.dst = Shown(row[kDst]);
  ReadCaller(row, &leg);
  ReadIds(row, &leg);
  for (const std::string* text :
       {&leg.channel, &leg.dstchannel, &leg.dst, &leg.src, &leg.callerName}) {
    Check(text->size() <= kTextBytesMax, "a name or number is longer than 1 KB",
          text->substr(0, 20));
  }
  return leg;
}

}  // namespace

CdrFile::CdrFile(std::istream& in, std::function<void(std::uint64_t)> progress)
    : in_(in), progress_(std::move(progress)), part_(new char[kPartBytes]) {}

bool CdrFile::Next(CdrRow* row) try {
  for (;;) {
    while (HasLine(0) && IsBlank(ahead_.front())) UseUp(1);
    if (ahead_.empty()) return false;
    *row = {linesUsed_ + 1, {}, {}};
    const Fields fields = InUtf8(ReadRecord());
    if (IsHeader({fields, false}) || IsHeader({fields, true})) continue;
    row->leg = ReadLeg(fields);
    return true;
  }
} catch (const Fault& fault) {
  row->fault = fault.reason;
  return true;
}

// The one with which the next line has enough columns.
bool CdrFile::FindSeparator() {
  for (const char separator : {',', ';', '\t'}) {
    RecordParser parser(separator);
    parser.Take(ahead_.front());
    if (parser.fields.size() < kFewestColumns) continue;
    separator_ = separator;
    return true;
  }
  return false;
}

std::vector<std::string> CdrFile::ReadRecord() {
  RecordParser parser(separator_);
  const bool tooLong = ahead_.front().size() > kRowBytesMax;
  std::size_t bytes = 0;
  for (std::size_t line = 0; !tooLong && line < kRowLinesMax && HasLine(line); ++line) {
    bytes += ahead_[line].size();
    if (bytes > kRowBytesMax || !parser.Take(ahead_[line])) break;
    const bool fewColumns = line == 0 && parser.fields.size() < kFewestColumns;
    if (fewColumns && FindSeparator()) return ReadRecord();
    if (!parser.complete) continue;
    UseUp(line + 1);
    return std::move(parser.fields);
  }
  UseUp(1);
  throw Fault{tooLong ? "longer than 16 MB" : "a quoted field is not closed"};
}

void CdrFile::UseUp(std::size_t lines) {
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(lines));
  linesUsed_ += lines;
}

bool CdrFile::HasLine(std::size_t ahead) {
  while (ahead_.size() <= ahead && ReadLine()) {
  }
  return ahead_.size() > ahead;
}

// A line beyond the limit is cut just behind it, where ReadRecord() will notice; its rest is passed
// over.
bool CdrFile::ReadLine() {
  const bool first = bytesRead_ == 0;
  if (!ReadPart()) return false;
  std::string line(part_.get(), static_cast<std::size_t>(in_.gcount()) - (in_.good() ? 1 : 0));
  while (in_.rdstate() == std::ios::failbit) {
    in_.clear();
    ReadPart();
  }
  if (first && line.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    line.erase(0, kByteOrderMark.size());
  }
  if (line.size() < kRowBytesMax && !line.empty() && line.back() == '\r') line.pop_back();
  ahead_.push_back(line + '\n');
  return true;
}

// A line, or as much of it as `part_` takes: then the stream has failed. False at the end.
bool CdrFile::ReadPart() {
  in_.getline(part_.get(), kPartBytes);
  if (in_.gcount() == 0) return false;
  bytesRead_ += static_cast<std::uint64_t>(in_.gcount());
  if (progress_) progress_(bytesRead_);
  return true;
}

}  // namespace desk
