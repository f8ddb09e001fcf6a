// Every operation of a network, on whatever network a fuzzed file has left.

#pragma once

#include <algorithm>
#include <string>

#include <quillaven/network/network.h>

#include "fuzz/fuzz_support.h"

inline void DriveEveryOperation(CNetwork &network, SilentApplication const &application) {
  std::string const out = application.Write("out", nullptr, 0);
  network.HasData();
  network.FindNode(1.0, 2.0);
  network.FindLink(0, 0);
  network.FindLink(1, 2);
  for (unsigned long x : {0UL, 1UL, 0x7FFFFFFFUL, 0x80000000UL}) {
    network.FindClosestNode(x, 1);
    network.FindClosestLink(1, x, x);
  }
  for (int i = 0; i < network.GetLinkTypesCount(); ++i) network.GetLinkTypeName(i);
  for (unsigned long i = 0; i < std::min(network.NodeCount(), 200UL); ++i) {
    network.NodeInDegree(network.GetNode(i));
    network.NodeOutDegree(network.GetNode(i));
  }
  network.Report(out.c_str());
  for (int type = 0; type < 4; ++type)
    network.WriteAsciiFile(out.c_str(), static_cast<unsigned char>(type));

  CNetwork copy = network;
  for (unsigned long i = 1; i < std::min(copy.LinkCount(), 50UL); ++i) {
    copy.DeltaDeleteLink(1990, copy.GetLink(i));
    copy.DeltaAddLink(1995, copy.GetLink(i));
  }
  copy.Write(out.c_str());
  copy.SetDataDefYear(1980, out.c_str());
  copy.LoadTemporalData(1995);
  for (unsigned long i = 0; i < std::min(copy.LinkCount(), 50UL); ++i) {
    CNetwork::CLink *const link = copy.GetLink(i);
    if (copy.NodeCount() < 2) break;
    copy.DelOutLink(copy.GetNode(1), link);
    copy.DelInLink(copy.GetNode(1), link);
    copy.AddInLink(copy.GetNode(1), link);
    copy.AddOutLink(copy.GetNode(1), link);
  }
  std::string const definitions = application.Write("definitions.txt", nullptr, 0);
  copy.SaveTemporalDataDefinition(definitions.c_str(), definitions.c_str());
  network = copy;
  network.Clear(false);
}
