// What a request for a server list answers.
#pragma once

namespace NS_CALLLOG {

enum BSListResult {
  BS_LIST_OK = 0,           // the page was filled
  BS_LIST_DOWNLOADING = 1,  // the list is being fetched: ask again when it is there
  BS_LIST_FAILED = 2,  // the transfer could not be started, or memory ran out. When it could not
                       // even be created, the next request tries again; when the platform refused
                       // it, the list counts as being fetched until it is cancelled or refreshed
  BS_LIST_NOT_CONFIGURED = 6,  // the click action names no source, or one without a server
  BS_LIST_NO_NETWORK = 7,      // the network is not available
  BS_LIST_INVALID = 10,  // no page, an empty click action, or a page that the platform refuses
};

}  // namespace NS_CALLLOG
