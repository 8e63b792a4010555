// The module against the plain model, with a restart every so often. Another seed can be tried with
// the environment variable CALLLOG_SEED.
#include <cstdlib>

#include "tests/support/ModelDriver.h"

namespace desk {
namespace {

class ModelTest : public ModelDriver {
 protected:
  void Run(unsigned int seed) {
    constexpr int kSteps = 20000;
    constexpr int kStepsBetweenRestarts = 500;
    Begin(seed, kStepsBetweenRestarts);
    for (int step = 0; step < kSteps && !HasFailure(); ++step) Step();
    const std::string command = "xmllint --noout '" + HistoryFile().string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }
};

TEST_F(ModelTest, AgreesWithTheModule) {
  Run(20261007);
  const char* const seed = std::getenv("CALLLOG_SEED");
  if (seed != nullptr) Run(static_cast<unsigned int>(std::strtoul(seed, nullptr, 10)));
}

}  // namespace
}  // namespace desk
