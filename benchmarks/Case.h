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
  // Brings the state back to where each run begins: each run is timed by itself then. Empty where a
  // run leaves an equivalent state: the runs follow one another. Alike for all contestants of a
  // work.
  std::function<void()> restore;
};

inline constexpr auto kNothing = [] {};  // to restore, where others must

// Works named "records " and "hits ", with a number and a name behind, show growth.
struct Case {
  std::string work;
  std::string contestant;
  std::function<Operation()> prepare;
};

using Cases = std::vector<Case>;

// Contestants
inline constexpr char kModule[] = "module";
inline constexpr char kMemory[] = "SQLite, memory";
inline constexpr char kFile[] = "SQLite, file";
inline constexpr char kWalk[] = "bare walk";
inline constexpr char kWalkAndSort[] = "walk and sort";
inline constexpr char kParse[] = "bare parse";
inline constexpr char kWrite[] = "bare write";
inline constexpr char kPrint[] = "bare print";
inline constexpr char kStream[] = "straightforward";
inline constexpr char kFullSearch[] = "full search";  // of the module, instead of the narrowing one

// Each appends its own.
void AppendHistoryCases(Cases* cases);
void AppendSearchCases(Cases* cases);
void AppendFileCases(Cases* cases);
void AppendServerCases(Cases* cases);

}  // namespace bench
