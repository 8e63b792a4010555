// The rows of a file of call detail records: CSV by libcsv, the two column layouts, and each row's
// values checked. What the rows mean to a phone is left to CdrCalls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <istream>
#include <memory>
#include <string>
#include <vector>

namespace desk {

// One leg of a call: one row.
struct CdrLeg {
  std::string src;  // the caller's number: from the column, else from clid; may be empty
  std::string dst;
  std::string callerName;  // empty when clid has none, or only repeats the number
  std::string channel;
  std::string dstchannel;
  std::string lastapp;
  std::uint64_t uniqueid = 0;  // hashes; 0 when the row has none
  std::uint64_t linkedid = 0;
  std::uint64_t record = 0;  // uniqueid, or the hash of all columns
  int start = 0;             // seconds since 1970-01-01 00:00:00 UTC
  int duration = 0;
  int billsec = 0;
  bool answered = false;
};

struct CdrRow {
  std::size_t line = 0;  // line on which the row begins, from 1
  CdrLeg leg;
  std::string fault;  // why the row is bad; empty: `leg` holds it
};

// Reads forward through the stream, holding no more of it than the current row.
class CdrFile {
 public:
  // `progress`, where there is one, gets the number of bytes read after every line.
  CdrFile(std::istream& in, std::function<void(std::uint64_t)> progress);

  // The next record, blank lines and headers passed over; false at the end.
  bool Next(CdrRow* row);

 private:
  bool FindSeparator();
  // Takes the next record off the lines; a bad one as its first line alone.
  std::vector<std::string> ReadRecord();
  void UseUp(std::size_t lines);
  bool HasLine(std::size_t ahead);
  bool ReadLine();
  bool ReadPart();

  std::istream& in_;
  std::function<void(std::uint64_t)> progress_;
  const std::unique_ptr<char[]> part_;
  std::uint64_t bytesRead_ = 0;
  char separator_ = ',';           // of the last row
  std::deque<std::string> ahead_;  // lines read and not yet used up
  std::size_t linesUsed_ = 0;
};

}  // namespace desk
