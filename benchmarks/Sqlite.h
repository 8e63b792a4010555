// SQLite's connections and prepared statements as objects. Whatever fails ends the run with
// SQLite's words: a contestant that does less than its work must not win.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

namespace bench {

class Connection {
 public:
  explicit Connection(const std::string& path);

  void Execute(const char* sql) const;
  sqlite3* get() const { return handle_.get(); }

 private:
  struct Close {
    void operator()(sqlite3* handle) const { sqlite3_close(handle); }
  };
  std::unique_ptr<sqlite3, Close> handle_;
};

// Prepared once; bound, stepped and reset for each use. What is bound must stay until the reset.
class Statement {
 public:
  Statement(const Connection& connection, const char* sql);

  void Bind(int parameter, int number);
  void Bind(int parameter, const std::string& text);
  bool Step();  // true: there is a row
  void Run();   // all steps, and the reset
  void Reset() { sqlite3_reset(handle_.get()); }
  int Number(int column) { return sqlite3_column_int(handle_.get(), column); }
  void Text(int column, std::string* text);

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> handle_;
};

}  // namespace bench
