// Any bytes as vector text, read twice as two types, and every operation on what they leave.

#include "fuzz/network_drive.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  std::string const file = application.Write("a.txt", data, size);
  CNetwork network;
  network.ReadAsciiFile(file.c_str(), 1);
  network.ReadAsciiFile(file.c_str(), 2);
  DriveEveryOperation(network, application);
  return 0;
}
