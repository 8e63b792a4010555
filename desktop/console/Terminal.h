// The phone at a terminal: line editing, history and completion, with the message loop running
// between the keys.
#pragma once

namespace desk {

struct Console;
class Signals;

// Runs until the user quits, the input ends, the terminal goes, or a signal ends the phone. Ctrl-C
// ends a command that waits, and at the prompt the phone; Ctrl-Z stops the phone until the shell
// lets it go on.
void RunTerminal(Console& console, Signals& signals);

}  // namespace desk
