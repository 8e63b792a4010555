// The program's subcommand "server": a call log server alone, without a phone.
#pragma once

#include <string>

#include "desktop/server/LogServer.h"

namespace CLI {
class App;
}

namespace desk {

class ServerProgram {
 public:
  // Adds the subcommand with its options.
  explicit ServerProgram(CLI::App* program);

  bool IsWanted() const;
  // Serves until SIGINT or SIGTERM; at a terminal it asks for the password that is missing. The
  // exit status. Throws std::runtime_error when it cannot serve, or would let in whom it must not.
  int Run();

 private:
  std::string Password() const;

  CLI::App* const command_;
  LogServer::Settings settings_;
  std::string passwordFile_;
};

}  // namespace desk
