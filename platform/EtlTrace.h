// The platform's trace.
#pragma once

namespace ETL_TraceHelper {

// Writes one line, formatted as printf does, at `level`: 2 for the arrival of a configuration
// message and the start of a server transfer, 3 for the module's progress lines. Any thread. Never
// throws: a line without memory is lost.
//
// Arguments can hold what a caller or a server sent, and a server's URL can hold a user and a
// password: whoever writes the line out must keep control characters and credentials from it.
void etlTrace(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace ETL_TraceHelper
