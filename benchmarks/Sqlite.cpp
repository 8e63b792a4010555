#include "benchmarks/Sqlite.h"

#include <stdexcept>

namespace bench {
namespace {

void Check(int result, sqlite3* handle) {
  if (result != SQLITE_OK)
    throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(handle));
}

}  // namespace

Connection::Connection(const std::string& path) {
  sqlite3* handle = nullptr;
  const int result = sqlite3_open(path.c_str(), &handle);
  handle_.reset(handle);
  Check(result, handle);
}

void Connection::Execute(const char* sql) const {
  Check(sqlite3_exec(get(), sql, nullptr, nullptr, nullptr), get());
}

Statement::Statement(const Connection& connection, const char* sql) {
  sqlite3_stmt* handle = nullptr;
  Check(sqlite3_prepare_v3(connection.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &handle, nullptr),
        connection.get());
  handle_.reset(handle);
}

void Statement::Bind(int parameter, int number) {
  Check(sqlite3_bind_int(handle_.get(), parameter, number), sqlite3_db_handle(handle_.get()));
}

void Statement::Bind(int parameter, const std::string& text) {
  Check(sqlite3_bind_text(handle_.get(), parameter, text.data(), static_cast<int>(text.size()),
                          SQLITE_STATIC),
        sqlite3_db_handle(handle_.get()));
}

bool Statement::Step() {
  const int result = sqlite3_step(handle_.get());
  if (result == SQLITE_ROW) return true;
  Check(result == SQLITE_DONE ? SQLITE_OK : result, sqlite3_db_handle(handle_.get()));
  return false;
}

void Statement::Run() {
  while (Step()) {
  }
  Reset();
}

void Statement::Text(int column, std::string* text) {
  const unsigned char* const bytes = sqlite3_column_text(handle_.get(), column);
  text->assign(reinterpret_cast<const char*>(bytes),
               static_cast<std::size_t>(sqlite3_column_bytes(handle_.get(), column)));
}

}  // namespace bench
