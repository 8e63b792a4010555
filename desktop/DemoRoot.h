// The directory of the demonstration's phone. It is never that of the user's own: the demonstration
// changes and removes calls as it likes.
#pragma once

#include <filesystem>

namespace desk {

class DemoRoot {
 public:
  // The directory that the user named. If none (empty): one beside the user's own phone's, or, to
  // play the scenario, a new one that goes with this object. Throws RootError for the user's own,
  // whatever the path to it, and when the scenario would meet a history.
  DemoRoot(const std::filesystem::path& named, bool playsScenario);
  ~DemoRoot();
  DemoRoot(const DemoRoot&) = delete;
  DemoRoot& operator=(const DemoRoot&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  bool goes_;
};

}  // namespace desk
