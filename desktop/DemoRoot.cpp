// Which directory the demonstration may have.
#include "desktop/DemoRoot.h"

#include <stdlib.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "desktop/phone/RootDirectory.h"

namespace desk {
namespace {

namespace fs = std::filesystem;

constexpr char kData[] = "config/data";  // where a phone keeps its history

fs::path MakeTemporary() {
  std::string path = fs::temp_directory_path() / "deskphone-demo-XXXXXX";
  if (mkdtemp(path.data()) == nullptr) {
    throw RootError("cannot make " + path + ": " + std::generic_category().message(errno));
  }
  return path;
}

// With links followed as far as the paths exist; below a mount of its own a directory has two.
bool IsSame(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::weakly_canonical(a, ignored) == fs::weakly_canonical(b, ignored) ||
         fs::equivalent(a, b, ignored);
}

// The history, or what the guard has kept of one.
bool HoldsHistory(const fs::path& root) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(root / kData, ignored)) {
    if (entry.path().filename().string().rfind("call_data.xml", 0) == 0) return true;
  }
  return false;
}

}  // namespace

DemoRoot::DemoRoot(const fs::path& named, bool playsScenario)
    : path_(named), goes_(named.empty() && playsScenario) {
  const fs::path own = fs::absolute(RootDirectory::Default());
  if (goes_) {
    path_ = MakeTemporary();
  } else if (named.empty()) {
    path_ = own.string() + "-demo";
  }
  const auto refuse = [this](const char* why) {
    throw RootError("cannot use " + path_.string() + ": " + why);
  };
  if (IsSame(path_ / kData, own / kData)) {
    refuse("it is your own phone's directory, which the demonstration never touches");
  }
  if (playsScenario && HoldsHistory(path_)) {
    refuse("it holds a history, which the demonstration's scenario would remove");
  }
}

DemoRoot::~DemoRoot() {
  std::error_code ignored;
  if (goes_) fs::remove_all(path_, ignored);
}

}  // namespace desk
