// A PBX's call detail records, read as the calls that one extension's phone would have seen.
// The text of the file is read in CdrFile, rows become calls in CdrCalls; opening the file, showing
// progress and handing the calls to the module is the caller's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <set>
#include <string>
#include <vector>

#include "CallLogRecords.h"

namespace desk {

struct BadRow {
  std::size_t line;  // line on which the row begins, from 1
  std::string reason;
};

struct CdrOptions {
  std::string extension;  // a number or a name, as the PBX's channels carry it
  std::string server;     // SIP server of both parties
  std::function<void(std::uint64_t bytesDone)> progress;  // after every line; may be empty
};

struct CdrCall : CallLogAddItemData {
  std::set<std::uint64_t> records;  // of the extension: the same numbers whatever else is read
};

struct CdrImport {
  std::vector<CdrCall> calls;  // oldest first; calls of one second in the file's order
  std::size_t older = 0;       // calls beyond the newest hundred of their type, which are left out
  std::size_t rows = 0;        // all records, the bad ones too; no header, no blank line
  std::size_t other = 0;       // records in which the extension has no channel
  std::size_t badRows = 0;
  std::vector<BadRow> bad;              // the first 20
  std::vector<std::string> extensions;  // the ten busiest, when the extension has no channel at all
};

// Reads Asterisk's Master.csv and its custom layout, mixed as they come, separated by ",", ";" or
// tab; times are local, and a row that is no UTF-8 is ISO-8859-1. Memory is bounded: from the first
// record of a call to its last are at most 100,000 rows; what comes later is another call.
// Nothing is thrown for bad input; a stream that broke off has bad() set afterwards.
//
// Who called whom is told by the channels alone: the extension placed a call when it is the
// endpoint of `channel` (also when it called itself), and was called when it is that of
// `dstchannel`. The rows that share a uniqueid or linkedid are one call, and give at most one call
// to and one per channel from the extension; answered legs one after the other add up their
// billsec, legs at the same time count once.
//
// Type 1 is a placed call, whatever became of it. Type 3 is an answered one. Type 2 is any other
// disposition, BUSY and FAILED too, unless some channel answered another leg; voicemail and menus
// have no channel of their own, so a call that they took is still missed. Type 4 never comes: a
// phone's own forwarding looks like any other dialling in these records.
CdrImport ReadCallRecords(std::istream& in, const CdrOptions& options);

}  // namespace desk
