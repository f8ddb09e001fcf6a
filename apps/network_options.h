// The commands on transport networks. Each ends normally or throws a Failure.

#pragma once

#include <optional>
#include <string>
#include <vector>

struct NetworkOptions {
  std::vector<std::string> texts;  // vector text to import
  std::string network;             // a binary network file that is read
  std::string out;
  std::string definitions;
  int type = 0;
  std::optional<int> year;
  int x = 0;
  int y = 0;
};

/// Reads vector text as links of one type into a network, new or added to one, and saves it.
void ImportNetwork(NetworkOptions const &options);
/// Writes the links of one type as vector text.
void ExportNetwork(NetworkOptions const &options);
/// Prints or writes the report on a network.
void ReportNetwork(NetworkOptions const &options);
/// Prints how much a network file holds.
void DescribeNetwork(std::string const &file);
/// The same of vector text, and the years of a definitions file; false, and nothing is printed, for a file
/// that is none.
bool DescribedAsVectorText(std::string const &file);
bool DescribedAsYears(std::string const &file);
/// Replays the years of a definitions file, or one of them, and prints what each holds.
void ReplayYears(NetworkOptions const &options);
/// Prints the node and the link nearest to a position.
void FindNearest(NetworkOptions const &options);
/// Prints a line for each fault of a binary network file, and fails if there is any.
void CheckNetwork(NetworkOptions const &options);
