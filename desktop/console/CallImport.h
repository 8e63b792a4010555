// Brings a PBX's call detail records into the phone and shows what came of them.
#pragma once

#include <string>

namespace desk {

struct Console;

struct CallImport {
  std::string file;
  std::string extension;
  std::string server;  // SIP server of the phone's account and of the callers

  // Throws CommandError when the file cannot be read, or the phone is interrupted meanwhile.
  void Run(Console& console) const;
};

}  // namespace desk
