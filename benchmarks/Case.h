// What is measured: one work of one contestant.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// Holds the state that the work is done on.
struct Operation {
  std::function<void()> run;
  // What the last run has brought about, as text; empty where a contestant does not do the whole
  // work. All contestants of a work that have one must give the same.
  std::function<std::string()> answer;
  // Brings the state back to where each run begins; may be empty where a run leaves an equivalent
  // state.
  std::function<void()> restore;
};

struct Case {
  std::string work;
  std::string contestant;
  std::function<Operation()> prepare;
  // Each run is timed by itself, after a restore. Otherwise the runs follow one another. The same
  // for all contestants of a work.
  bool restored = false;
};

using Cases = std::vector<Case>;

// Contestants
inline constexpr char kModule[] = "module";
inline constexpr char kMemory[] = "SQLite, memory";
inline constexpr char kWal[] = "SQLite, WAL";
inline constexpr char kJournal[] = "SQLite, FULL";
inline constexpr char kSearchIndexes[] = "SQLite, search indexes";
inline constexpr char kWalk[] = "bare walk";
inline constexpr char kParseFile[] = "TinyXML, file";
inline constexpr char kParseText[] = "TinyXML, text";
inline constexpr char kWrite[] = "bare write";
inline constexpr char kCopy[] = "memcpy";
inline constexpr char kStream[] = "straightforward";
inline constexpr char kFullSearch[] = "module, full search";

// Each appends its own. Works named "records ", "hits " and "entries ", with a number and a name
// behind, show growth.
void AppendHistoryCases(Cases* cases);
void AppendSearchCases(Cases* cases);
void AppendFileCases(Cases* cases);
void AppendServerCases(Cases* cases);

}  // namespace bench
