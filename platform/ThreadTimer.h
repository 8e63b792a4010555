// Timers that fire as messages on the thread that started them.
#pragma once

// Starts the timer `id` of the calling thread: after `milliseconds` the platform posts message
// 0x8113 with `id` as its wParam to that thread. A running timer of the same id starts anew.
// Whether a timer fires once or again and again is the platform's choice: the module stops its
// timer before each save, and ignores one that fires with nothing to save. True when it was
// started; after false nothing is saved until the host calls SaveToFile(). Never throws.
bool timerSetThreadTimer(unsigned int id, unsigned int milliseconds);

// Stops the timer `id` of the calling thread. Its message may still arrive when it was posted
// before. False when no such timer runs. Never throws.
bool timerKillThreadTimer(unsigned int id);
