// The messages that the module sends to the applications, through the platform's
// EtlMsgHandler_NotifyApp and EtlMsgHandler_NotifyAppEx.
#pragma once

// A download of a server call log has ended. wParam 0; lParam 0 when the list can now be read, 1
// when not; the extra data holds the list's URL (user and password included), NUL-terminated.
constexpr unsigned int MSG_BS_CALLLOG_DOWNLOADED = 0x913;

// The platform's message BROAD_MSG_CONFIG_CHANGE for the item ST_BS_CALLLOG has been dealt with:
// the sources of the server call logs are those of the file as it stands now. wParam 0, lParam 0.
constexpr unsigned int MSG_BS_CALLLOG_RELOADED = 0x914;
