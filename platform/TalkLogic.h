// Call control. Message thread only. Callers choose numbers and names: any bytes, any length, must
// not throw but for want of memory.
#pragma once

#include <string>

// Places a call to `number`, shown as `name`, through the account `accountId` (-1: the default
// account). True when the call attempt was taken on.
bool talkLogic_CallOut(const std::string& number, const std::string& name, int accountId);

// Opens the dial screen filled with `number` for the account `accountId` (-1: the default account).
// The module always passes true for `editable`: the user may change the number before dialling.
void talkLogic_EnterDialUI(const std::string& number, int accountId, bool editable);
