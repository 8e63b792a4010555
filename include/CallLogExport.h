// Marks what the library exports; everything else stays hidden.
#pragma once

#define CALLLOG_EXPORT __attribute__((visibility("default")))
