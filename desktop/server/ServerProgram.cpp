// The server's options, where its password comes from, and the wait for its end.
#include "desktop/server/ServerProgram.h"

#include <bsd/readpassphrase.h>
#include <signal.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "desktop/platform/Text.h"

namespace desk {
namespace {

constexpr char kPassword[] = "--password";
constexpr char kPasswordFile[] = "--password-file";

constexpr std::size_t kLongest = 1024;  // bytes of a password, with what ends it

std::string FirstLine(const std::string& name) {
  std::ifstream file(name);
  std::array<char, kLongest> line{};
  if (file) file.getline(line.data(), line.size());
  if (file.bad() || !file.is_open()) {
    throw std::runtime_error("cannot read " + name + ": " + std::strerror(errno));
  }
  std::string text(line.data(), static_cast<std::size_t>(file.gcount()));
  while (!text.empty() && (text.back() == '\0' || text.back() == '\r')) text.pop_back();
  if (file.fail() || text.empty() || text.find('\0') != text.npos) {
    throw std::runtime_error(name + ": no password in its first line");
  }
  return text;
}

// Signals end the program as ever, with the terminal's echo back.
std::string AskFor(const std::string& question) {
  std::array<char, kLongest> typed{};
  if (isatty(STDIN_FILENO) == 0) return {};
  const bool answered =
      readpassphrase(question.c_str(), typed.data(), typed.size(), RPP_REQUIRE_TTY) != nullptr;
  return answered ? typed.data() : "";
}

// A word as the phone's prompt reads it.
std::string Word(const std::string& text) {
  const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("@._-+/", c) != nullptr;
  });
  if (plain) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return Printable(quoted + "\"");
}

// The documents as a phone's sources, but for those whose names a URL would read as something else.
// The password is for the user to add.
void PrintSources(const LogServer& server, const std::string& user) {
  constexpr int kSources = 6;
  int index = 0;
  for (const std::string& name : server.Documents()) {
    if (index == kSources || name.find_first_of("#?%") != name.npos) continue;
    std::cout << "source " << index++ << " name=" << Word(std::filesystem::path(name).stem())
              << " server=" << Word("127.0.0.1/" + name) << " port=" << server.port();
    if (!user.empty()) std::cout << " user=" << Word(user) << " password=";
    std::cout << "\n";
  }
  std::cout << (index == 0 ? "it holds no documents\n" : "") << std::flush;
}

// What ends the server: blocked in every thread that comes, so that sigwait() gets it.
sigset_t BlockEnds() {
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  return ends;
}

}  // namespace

ServerProgram::ServerProgram(CLI::App* program)
    : command_(program->add_subcommand(
          "server", "serves call log documents on 127.0.0.1 until it is interrupted")) {
  command_->add_option("DIRECTORY", settings_.directory, "the documents; links are not followed")
      ->required();
  command_->add_option("--port", settings_.port, "0: any free one")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  command_->add_option("--user", settings_.user,
                       "wants this user; nobody in particular if empty. At a terminal it asks for "
                       "the password");
  command_->add_option(kPasswordFile, passwordFile_, "the password is the first line of this file");
  command_->add_option(kPassword, settings_.password,
                       "the password, for all to see who list the machine's processes");
}

bool ServerProgram::IsWanted() const { return command_->parsed(); }

std::string ServerProgram::Password() const {
  const bool given = command_->count(kPassword) > 0;
  const bool inFile = command_->count(kPasswordFile) > 0;
  if (given && inFile) throw std::runtime_error("two passwords: leave out one of the options");
  if (settings_.user.find(':') != std::string::npos) {
    throw std::runtime_error("a user cannot hold \":\": it ends there");
  }
  if (settings_.user.empty()) {
    if (!given && !inFile) return {};
    throw std::runtime_error("a password without --user would let everybody in");
  }
  std::string password = inFile ? FirstLine(passwordFile_) : settings_.password;
  if (password.empty()) password = AskFor("password of " + settings_.user + ": ");
  if (password.empty()) {
    throw std::runtime_error("no password for " + settings_.user + ": name a --password-file");
  }
  return password;
}

int ServerProgram::Run() {
  settings_.password = Password();
  const sigset_t ends = BlockEnds();
  LogServer server(settings_);
  server.Start();
  std::cout << "call logs on http://127.0.0.1:" << server.port() << "/" << std::endl;
  PrintSources(server, settings_.user);
  int received = 0;
  sigwait(&ends, &received);
  return 0;
}

}  // namespace desk
