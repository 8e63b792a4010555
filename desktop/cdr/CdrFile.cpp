// Two halves: text to fields, with the recovery from a quote that was never closed; and fields to a
// checked leg, for which the layout is told by the row itself.
#include "desktop/cdr/CdrFile.h"

#include <csv.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <limits>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "desktop/platform/WholeNumber.h"

namespace desk {
namespace {

constexpr std::size_t kRowBytesMax = 16 * 1024 * 1024;
constexpr std::size_t kPartBytes = kRowBytesMax + 2;  // one more shows that a row is too long
constexpr std::size_t kRowLinesMax = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

void DeleteParser(csv_parser* parser) {
  csv_free(parser);
  delete parser;
}

std::unique_ptr<csv_parser, void (*)(csv_parser*)> MakeParser() {
  auto parser = std::make_unique<csv_parser>();
  csv_init(parser.get(), 0);
  csv_set_blk_size(parser.get(), 4096);
  // ReadLine() takes the carriage return of a line's end; any other is part of its field.
  csv_set_term_func(parser.get(), [](unsigned char c) { return c == CSV_LF ? 1 : 0; });
  return {parser.release(), DeleteParser};
}

// What the parser's callbacks fill. They are called from C: nothing may be thrown through them.
struct Sink {
  std::vector<std::string>* fields;
  bool complete = false;
  bool outOfMemory = false;
};

void OnField(void* text, std::size_t size, void* data) {
  auto* sink = static_cast<Sink*>(data);
  try {
    sink->fields->emplace_back(static_cast<const char*>(text), size);
  } catch (...) {
    sink->outOfMemory = true;
  }
}

void OnRow(int, void* data) { static_cast<Sink*>(data)->complete = true; }

bool IsBlank(const std::string& line) { return line.find_first_not_of(" \t") == line.npos; }

bool SameWord(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Columns that differ between the layouts; the rest follows from these. Both have src and dst at 1
// and 2, and uniqueid at 16.
struct Layout {
  std::size_t clid;
  std::size_t channel;
  std::size_t start;
  std::size_t Lastapp() const { return channel + 2; }
  std::size_t End() const { return start + 2; }
  std::size_t Duration() const { return start + 3; }
  std::size_t Billsec() const { return start + 4; }
  std::size_t Disposition() const { return start + 5; }
  std::size_t Columns() const { return start + 7; }
};
constexpr std::size_t kSrc = 1;
constexpr std::size_t kDst = 2;
constexpr std::size_t kUniqueid = 16;
constexpr Layout kMaster = {4, 5, 9};
constexpr Layout kCustom = {0, 4, 8};

using Fields = std::vector<std::string>;

std::string_view At(const Fields& fields, std::size_t column) {
  return column < fields.size() ? std::string_view(fields[column]) : std::string_view();
}

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
int Fit(const Layout& layout, const Fields& fields) {
  return int{HasTimeShape(At(fields, layout.start))} + int{HasTimeShape(At(fields, layout.End()))} +
         int{Answered(At(fields, layout.Disposition())).has_value()};
}

// One of the three may be wrong, so that its fault can be named.
const Layout* FindLayout(const Fields& fields) {
  const Layout& better = Fit(kCustom, fields) > Fit(kMaster, fields) ? kCustom : kMaster;
  return Fit(better, fields) >= 2 ? &better : nullptr;
}

bool IsHeader(const Fields& fields) {
  for (const Layout& layout : {kMaster, kCustom}) {
    if (SameWord(At(fields, kSrc), "src") && SameWord(At(fields, layout.start), "start") &&
        SameWord(At(fields, layout.Disposition()), "disposition")) {
      return true;
    }
  }
  return false;
}

// A field as a reason shows it: short and on one line.
std::string Quoted(std::string_view field) {
  constexpr std::size_t kShown = 40;
  const bool cut = field.size() > kShown;
  std::size_t size = std::min(field.size(), kShown);
  while (cut && size > 0 && (static_cast<unsigned char>(field[size]) & 0xC0) == 0x80) --size;
  std::string shown(field.substr(0, size));
  for (char& c : shown) {
    if (std::iscntrl(static_cast<unsigned char>(c)) != 0) c = '?';
  }
  return "\"" + shown + (cut ? "...\"" : "\"");
}

std::string ReadStart(const std::string& text, int* start) {
  if (!HasTimeShape(text)) return "start is not a time: " + Quoted(text);
  std::tm local{};
  const char* const end = strptime(text.c_str(), "%Y-%m-%d %H:%M:%S", &local);
  // Checked as UTC: local time moves an hour of its own when clocks go forward. A day too many
  // moves the month.
  std::tm utc = local;
  timegm(&utc);
  if (end == nullptr || utc.tm_mon != local.tm_mon || utc.tm_sec != local.tm_sec) {
    return "start is not in the calendar: " + Quoted(text);
  }
  local.tm_isdst = -1;
  local.tm_wday = -1;  // set by mktime() when it succeeds; -1 as its result is a time, too
  const std::time_t time = std::mktime(&local);
  if (local.tm_wday < 0 || time < std::numeric_limits<int>::min() ||
      time > std::numeric_limits<int>::max()) {
    return "start is outside the years that the phone can store: " + Quoted(text);
  }
  *start = static_cast<int>(time);
  return {};
}

std::string ReadSeconds(const char* column, std::string_view text, int* seconds) {
  const auto number = WholeNumber(text, 0);
  if (!number) return std::string(column) + " is not a number of seconds: " + Quoted(text);
  *seconds = *number;
  return {};
}

// Text as a phone's line shows it: control characters would break lists and the history file.
std::string OneLine(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (std::iscntrl(static_cast<unsigned char>(c)) != 0) c = ' ';
  }
  const std::size_t first = line.find_first_not_of(' ');
  if (first == line.npos) return {};
  return line.substr(first, line.find_last_not_of(' ') - first + 1);
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789+*#") == text.npos;
}

// clid is `"Name" <number>`, or what there is of the two alone.
void ReadCaller(std::string_view srcField, std::string_view clidField, CdrLeg* leg) {
  leg->src = OneLine(srcField);
  const std::string clid = OneLine(clidField);
  const std::size_t bracket = clid.rfind('<');
  std::string name = OneLine(std::string_view(clid).substr(0, bracket));
  std::string number;
  if (bracket != clid.npos) {
    const std::size_t close = std::min(clid.find('>', bracket), clid.size());
    number = OneLine(clid.substr(bracket + 1, close - bracket - 1));
  } else if (IsNumber(name)) {
    number = name;
  }
  if (!name.empty() && name.front() == '"') {
    name.erase(0, 1);
    if (!name.empty() && name.back() == '"') name.pop_back();
    name = OneLine(name);
  }
  if (leg->src.empty()) leg->src = number;
  leg->callerName = name == leg->src || name == number ? std::string() : name;
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
void ReadIds(const Layout& layout, const Fields& fields, CdrLeg* leg) {
  const std::string_view id = At(fields, kUniqueid);
  const bool lone = fields.size() == layout.Columns() + 1 && layout.Columns() == kUniqueid;
  if (!lone || IsCallId(id)) leg->uniqueid = id;
  for (std::size_t column = kUniqueid + 1; column < fields.size(); ++column) {
    if (!IsCallId(fields[column])) continue;
    leg->linkedid = fields[column];
    return;
  }
}

// Returns why the row is bad; empty when `leg` holds it.
std::string ReadLeg(const Fields& fields, CdrLeg* leg) {
  const std::string columns =
      std::to_string(fields.size()) + (fields.size() == 1 ? " column" : " columns");
  const Layout* layout = FindLayout(fields);
  if (layout == nullptr) {
    return columns + (fields.size() < kCustom.Columns() ? ", too few for a call record"
                                                        : ", in no known order");
  }
  if (fields.size() < layout->Columns()) return columns + ", too few for a call record";
  const std::string_view disposition = At(fields, layout->Disposition());
  const std::optional<bool> answered = Answered(disposition);
  if (!answered) return "unknown disposition: " + Quoted(disposition);
  leg->answered = *answered;
  leg->channel = fields[layout->channel];
  leg->dstchannel = fields[layout->channel + 1];
  leg->lastapp = fields[layout->Lastapp()];
  leg->dst = OneLine(fields[kDst]);
  ReadCaller(fields[kSrc], fields[layout->clid], leg);
  ReadIds(*layout, fields, leg);
  std::string fault = ReadStart(fields[layout->start], &leg->start);
  if (fault.empty()) fault = ReadSeconds("duration", fields[layout->Duration()], &leg->duration);
  if (fault.empty()) fault = ReadSeconds("billsec", fields[layout->Billsec()], &leg->billsec);
  return fault;
}

}  // namespace

CdrFile::CdrFile(std::istream& in, std::function<void(std::uint64_t)> progress)
    : in_(in), progress_(std::move(progress)), parser_(MakeParser()), part_(new char[kPartBytes]) {}

CdrFile::~CdrFile() = default;

bool CdrFile::Next(CdrRow* row) {
  Record record;
  do {
    if (!NextRecord(&record)) return false;
  } while (record.fault.empty() && IsHeader(record.fields));
  row->line = record.line;
  row->leg = CdrLeg();
  row->fault = record.fault.empty() ? ReadLeg(record.fields, &row->leg) : record.fault;
  return true;
}

// A quote that was never closed would swallow the rows behind it. So stray quotes, which some
// writers leave in names, pass within a line only: where a field runs on they show that it should
// have ended. The row is then given up as its first line alone, and the second is read next.
bool CdrFile::NextRecord(Record* record) {
  *record = Record();
  while (HasLine(0) && IsBlank(ahead_.front())) {
    ahead_.pop_front();
    ++linesUsed_;
  }
  if (ahead_.empty()) return false;
  record->line = linesUsed_ + 1;
  std::size_t lines = 0;
  std::size_t bytes = 0;
  bool complete = false;
  while (!complete && record->fault.empty()) {
    const bool more = lines < kRowLinesMax && HasLine(lines);
    if (more) bytes += ahead_[lines].size();
    if (more && lines == 0 && bytes > kRowBytesMax) {
      record->fault = "longer than 16 MB";
    } else if (!more || bytes > kRowBytesMax || !ParseLine(ahead_[lines], record, &complete)) {
      record->fault = "a quoted field is not closed";
    }
    ++lines;
    csv_set_opts(parser_.get(), CSV_STRICT);
  }
  if (!record->fault.empty()) lines = 1;
  csv_fini(parser_.get(), nullptr, nullptr, nullptr);
  csv_set_opts(parser_.get(), 0);
  ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(lines));
  linesUsed_ += lines;
  return true;
}

bool CdrFile::ParseLine(const std::string& text, Record* record, bool* complete) {
  Sink sink{&record->fields};
  for (const std::string_view part : {std::string_view(text), std::string_view("\n")}) {
    const std::size_t done =
        csv_parse(parser_.get(), part.data(), part.size(), OnField, OnRow, &sink);
    if (sink.outOfMemory) throw std::bad_alloc();
    if (done == part.size()) continue;
    if (csv_error(parser_.get()) != CSV_EPARSE) throw std::bad_alloc();
    return false;
  }
  *complete = sink.complete;
  return true;
}

bool CdrFile::HasLine(std::size_t ahead) {
  while (ahead_.size() <= ahead) {
    std::string line;
    if (!ReadLine(&line)) return false;
    ahead_.push_back(std::move(line));
  }
  return true;
}

// A line beyond the limit is cut just behind it, where NextRecord() will notice; its rest is passed
// over.
bool CdrFile::ReadLine(std::string* line) {
  const bool first = bytesRead_ == 0;
  if (!ReadPart()) return false;
  line->assign(part_.get(), static_cast<std::size_t>(in_.gcount()) - (in_.good() ? 1 : 0));
  while (in_.rdstate() == std::ios::failbit) {
    in_.clear();
    ReadPart();
  }
  if (first && line->compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    line->erase(0, kByteOrderMark.size());
  }
  if (line->size() <= kRowBytesMax && !line->empty() && line->back() == '\r') line->pop_back();
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
