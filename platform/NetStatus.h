// State of the network.
#pragma once

// 2: the network is available. Any other value: it is not.
int netGetNetworkSta();
