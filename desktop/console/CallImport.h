// Brings a PBX's call detail records into the phone and shows what came of them.
#pragma once

#include <string>

namespace desk {

struct Console;

struct CallImport {
  std::string file;  // "-": standard input
  std::string extension;
  std::string server;  // SIP server of the phone's account and of the callers

  // Each call comes in once, however often it is in a file. Throws CommandError when the file
  // cannot be read, has no call record or none of the extension, or the phone is interrupted
  // meanwhile.
  void Run(Console& console) const;
};

}  // namespace desk
