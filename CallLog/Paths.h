// Where the module keeps its files. CALLLOG_PATH_ROOT is empty on the phone; the desktop build puts
// a directory in front of every path, and differs in nothing else.
#pragma once

#ifndef CALLLOG_PATH_ROOT
#define CALLLOG_PATH_ROOT ""
#endif

namespace NS_CALLLOG {

inline constexpr char kConfigDirectory[] = CALLLOG_PATH_ROOT "/config/data/";
inline constexpr char kHistoryFileName[] = "call_data.xml";
inline constexpr char kSourcesFileName[] = "broadsoft_calllog_list.xml";
inline constexpr char kTemporaryDirectory[] = CALLLOG_PATH_ROOT "/tmp/";
inline constexpr char kDownloadFileName[] = "BroadSoftCallLog.xml";  // of every transfer
inline constexpr char kIconDirectory[] = CALLLOG_PATH_ROOT "/phone/resource/default/";

}  // namespace NS_CALLLOG
