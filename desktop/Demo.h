// What a phone without surroundings of its own is given: a directory to be tried in, and a server
// of call logs.
#pragma once

#include <filesystem>
#include <memory>

namespace desk {

class LogServer;

// The directory of the demonstration's phone. It is never that of the user's own: the demonstration
// changes and removes calls as it likes.
class DemoRoot {
 public:
  enum class Use { kKept, kCommands, kScenario };

  // The directory that the user named. If none (empty): one beside the user's own phone's, which is
  // kept; for commands from elsewhere and for the scenario a new one that goes with this object.
  // Throws RootError for the user's own, whatever the path to it, and when the scenario would meet
  // a history.
  DemoRoot(const std::filesystem::path& named, Use use);
  ~DemoRoot();
  DemoRoot(const DemoRoot&) = delete;
  DemoRoot& operator=(const DemoRoot&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  bool goes_;
};

// A server of these documents in this process, running. Throws std::runtime_error when it cannot.
std::unique_ptr<LogServer> ServeDocuments(const std::filesystem::path& directory);

// Sets up sources for what it serves on the phone that is on.
void SetUpSources(const LogServer& server);

}  // namespace desk
