// What tests and benchmarks see of a network beyond its interface.
//
//   EXPECT_EQ(CNetworkAccess::Cells(network).size(), 3);
//   EXPECT_TRUE(CNetworkAccess::ReadIOS(network, file));

#pragma once

#include <cstdint>
#include <vector>

#include <quillaven/network/network.h>
#include <quillaven/network/network_node_index_internal.h>

struct CNetworkAccess {
  using CLinkTypeName = CNetwork::CLinkTypeName;

  static auto &Nodes(CNetwork &network) { return network.nodes; }
  static auto &Links(CNetwork &network) { return network.links; }
  static auto &Cells(CNetwork &network) { return network.idListElems; }
  static auto &LinkTypes(CNetwork &network) { return network.linkTypes; }
  static auto &FileName(CNetwork &network) { return network.fileName; }
  static bool &LinkTypesRead(CNetwork &network) { return network.linkTypesRead; }
  static std::int32_t &LoadedYearIndex(CNetwork &network) { return network.loadedYearIndex; }
  static std::vector<CNetwork::CTemporalData> &Years(CNetwork &network) {
    return network.temporalData;
  }

  static int YearIndex(CNetwork const &network, int year) {
    return network.GetTemporalDataIndex(year);
  }
  static bool ReadSDK(CNetwork &network, char const *file) { return network.ReadSDK(file); }
  static bool ReadIOS(CNetwork &network, char const *file) { return network.ReadIOS(file); }
  static bool WriteSDK(CNetwork const &network, char const *file) { return network.WriteSDK(file); }
  static bool WriteIOS(CNetwork const &network, char const *file) { return network.WriteIOS(file); }
};
