// Any bytes as a definitions file of years, replayed, saved and read again.

#include "fuzz/network_drive.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  static SilentApplication const application;
  CNetwork network;
  std::string const net = application.Write("net.bin", nullptr, 0);
  network.Write(net.c_str());
  std::string const file = application.Write("years.txt", data, size);
  network.LoadTemporalDataDefinition(file.c_str(), file.c_str());
  for (int year : {1995, 0, 1990, 2100}) {
    network.LoadTemporalData(year);
    network.IsYearLoaded(year);
  }
  std::string const saved = application.Write("saved.txt", nullptr, 0);
  network.SaveTemporalDataDefinition(saved.c_str(), saved.c_str());
  network.LoadTemporalDataDefinition(saved.c_str(), saved.c_str());
  DriveEveryOperation(network, application);
  return 0;
}
