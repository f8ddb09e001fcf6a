// Any bytes as a binary network file, and every operation on what they leave.

#include <quillaven/network/network_access_internal.h>

#include "fuzz/network_drive.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const file = application.Write("a.bin", data, size);
  CNetwork network;
  CNetworkAccess::ReadIOS(network, file.c_str());
  network.Clear(true);
  network.Read(file.c_str());
  DriveEveryOperation(network, application);
  return 0;
}
