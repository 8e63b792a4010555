// The phone at a terminal: line editing, history and completion, with the message loop running
// between the keys.
#pragma once

namespace desk {

class Phone;

// Runs until the user quits or the input ends.
void RunTerminal(Phone& phone);

}  // namespace desk
