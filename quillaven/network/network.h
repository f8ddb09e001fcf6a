// A directed transport network that changes from year to year, and its files.
//
//   CNetwork network;
//   network.ReadAsciiFile("roads.txt", 2);            // polylines become links of type 2
//   CNetwork::CLink *link = network.FindClosestLink(546100, 5229300, 0);
//   network.SetLinkTypeName(2, "Other roads");
//   network.Write("roads.bin");
//
// Nodes, links and the cells of the lists that say which links enter and leave a node lie in three
// growing arrays, the pools, and refer to each other by index. Index 0 of each is a reserved record
// that means "nothing". So a pool is written and read as one block, and an index means the same in
// memory and in the file. Records are only appended: what is deleted is marked and keeps its place.
// A pointer to a record is good until the next creation of such a record; hold the index over it.
//
// Coordinates are in the unit of the file they came from. Two places are one node only if both
// coordinates compare equal. Pointers given to an operation must point to records of this network;
// they are not tested. An index beyond a pool, as a damaged file may hold, counts as nothing.
//
// Format pages: network-binary.md, network-vector-text.md, network-years.md, network-report.md.

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <quillaven/network/record_pool.h>
#include <quillaven/platform/api.h>
#include <quillaven/platform/geometry.h>

struct CNetworkIndex;

class QUILLAVEN_API CNetwork {
 public:
  /// A place in the plane. 24 bytes, as in the file. Without a link in either list it counts as
  /// unused, but keeps its place and its coordinates, and comes back to life with the next link.
  struct CNode {
    double x = 0.0;
    double y = 0.0;
    std::uint32_t inLinks = 0;   ///< first cell of the list of links that end here; 0: none
    std::uint32_t outLinks = 0;  ///< first cell of the list of links that start here; 0: none
  };

  /// A link from one node to another. 12 bytes; id and type share the third word, which is
  /// type * 2^24 + id. Unused if both ends are 0.
  struct CLink {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::uint32_t id : 24 = 0;   ///< of the polyline that it came from; several links can share it
    std::uint32_t type : 8 = 0;  ///< index in the table of link types
  };

  /// One cell of a node's list of links. 8 bytes. Unused if link is 0.
  struct CIdListElem {
    std::uint32_t link = 0;
    std::uint32_t next = 0;  ///< the next cell; 0: end of the list
  };

  /// A link that is added to or deleted from the network in a year. It is told by the places of its
  /// ends, since a node's index differs from one year's file to the next.
  struct CDelta {
    CNode start;  ///< x and y count
    CNode end;    ///< x and y count
    CLink link;   ///< type and id count
    bool add = false;
  };

  /// A year: its binary network file or "<none>", and the changes behind that, in order.
  struct CTemporalData {
    std::int32_t year = 0;
    std::string fileName;
    std::vector<CDelta> deltas;
  };

  /// A network of the reserved records alone, with room for 40000 nodes and links.
  CNetwork();
  /// Copies are deep; a copy has no spare room, so its first creation moves a pool.
  CNetwork(CNetwork const &network);
  CNetwork &operator=(CNetwork const &network);
  ~CNetwork();

  /// Back to the reserved records; no year is loaded then. `all` also forgets the years and the
  /// table of link types. Room for 40000 nodes and links and 80000 cells is made and never given
  /// back.
  void Clear(bool all);

  // ---- The store -------------------------------------------------------------------------------

  /// Whether any link was created, be it still in use or not.
  bool HasData() const;
  /// Sizes of the pools: the reserved record and all unused ones count.
  unsigned long NodeCount() const;
  unsigned long LinkCount() const;
  /// The record at an index, which must lie below the count.
  CNode *GetNode(unsigned long index);
  CLink *GetLink(unsigned long index);
  unsigned long IndexOf(CNode const *node) const;
  unsigned long IndexOf(CLink const *link) const;
  unsigned long IndexOf(CIdListElem const *cell) const;

  // Here, as every pass over a pool asks each record.
  static bool IsUnused(CNode const *node) { return node->inLinks == 0 && node->outLinks == 0; }
  static bool IsUnused(CLink const *link) { return link->from == 0 && link->to == 0; }
  static bool IsUnused(CIdListElem const *cell) { return cell->link == 0; }
  /// Marks a record: it stays in its pool and is never used again, nodes excepted.
  static void SetUnused(CNode *node);
  static void SetUnused(CLink *link);
  static void SetUnused(CIdListElem *cell);

  /// Appends a record that is unused as yet; the caller sets its fields. Linking up is the
  /// caller's too: set the link's ends, then AddOutLink on the start and AddInLink on the end node.
  CNode *CreateNode();
  CLink *CreateLink();
  CIdListElem *CreateIdListElem();

  /// Put a link first in a node's list, or take it out, which leaves a marked cell. Neither touches
  /// the link. Taking out what is not in the list does nothing. Cost: the length of the list.
  void AddInLink(CNode *node, CLink const *link);
  void AddOutLink(CNode *node, CLink const *link);
  void DelInLink(CNode *node, CLink const *link);
  void DelOutLink(CNode *node, CLink const *link);
  int NodeInDegree(CNode const *node) const;
  int NodeOutDegree(CNode const *node) const;

  /// The node of lowest index at exactly this place, unused ones included; null if there is none.
  /// One plain pass over all nodes, as a caller may have changed coordinates at any time.
  CNode *FindNode(double x, double y);
  /// The link that was added last from one node to the other, null if there is none. Cost: the
  /// number of links that leave the node.
  CLink *FindLink(unsigned long from, unsigned long to);

  /// Names of link types, at most 31 characters each; a longer one is cut. Setting a name beyond
  /// the table enlarges it, with empty names between. Reading beyond it gives an empty text.
  int GetLinkTypesCount() const;
  std::string GetLinkTypeName(int index) const;
  void SetLinkTypeName(int index, std::string const &name);

  // ---- Binary files: the pools as they lie in memory, little-endian ("MI03") ---------------------

  /// Replaces the pools by those of a file. A file that does not open or has no network header is
  /// told in a box and changes nothing. One that ends early gives false without a message, and the
  /// pools may be half of the old and half of the new: Clear the network or read another file.
  /// Indices of the file are not tested. The table of link types comes from the first file that is
  /// read after Clear(true); older files, without one, bring four standard names. The years stay.
  /// Cost: one block read for each pool. A count that the file cannot hold is not believed.
  bool Read(char const *file);
  /// Writes all pools, unused records included. False, with a box, if the file cannot be created;
  /// a disk that fills up is not noticed.
  bool Write(char const *file) const;

  // ---- ArcInfo vector text: polylines of one link type ------------------------------------------

  /// Adds the polylines of a file: each segment becomes a link of `type` in reading direction with
  /// the polyline's id, each point a node. A link that is there takes the new type and id. What is
  /// wrong in the file is told in a box, titled "ArcInfo vector file", and ends the reading with
  /// false; what was read until then stays. Cost: linear in the points, however many of them share
  /// a node.
  bool ReadAsciiFile(char const *file, unsigned char type);
  /// Writes the links of `type`, those that follow each other with one id as one polyline. Ids 0
  /// and ids that return behind links of other types lose their first point: readers of these
  /// files know them so. False, with a box, if the file cannot be created.
  bool WriteAsciiFile(char const *file, unsigned char type) const;

  // ---- Years ------------------------------------------------------------------------------------

  /// Replaces the list of years by a definitions file. Names in it are relative to the file `base`.
  /// The network stays as it is, and so does the note which year it shows: Clear(false) first.
  /// A file that does not open is thrown as a std::string; a bad line is told in a box and skipped.
  void LoadTemporalDataDefinition(char const *file, char const *base);
  /// Writes the list, with each year's network file copied beside it as NAME_YEAR.bin. Years with
  /// neither file nor changes are left out. False, with a box, if a file cannot be written.
  bool SaveTemporalDataDefinition(char const *file, char const *base);
  /// Sets the network file of a year, as it is given; an existing year loses its changes.
  bool SetDataDefYear(int year, char const *file);
  /// Brings the network to a year by replaying the list from its start; nothing is done if the year
  /// is loaded. Without a file in the first entry the replay starts on what is there. False if a
  /// network file does not read; no year counts as loaded then.
  /// Cost: the files and one pass over the nodes each, then linear in the changes, wherever they
  /// are.
  bool LoadTemporalData(int year);
  /// Whether the network shows the year: the last entry not later than it is loaded.
  bool IsYearLoaded(int year) const;
  /// Note in the list that a link is added or deleted in a year. The network does not change.
  void DeltaAddLink(int year, CLink const *link);
  void DeltaDeleteLink(int year, CLink const *link);

  // ---- Queries and the report -------------------------------------------------------------------

  /// The used node or link nearest to a whole position, null if there is none. Coordinates of the
  /// network are cut to whole numbers first. Arguments count as signed 32-bit numbers. Ties go to
  /// the lowest index, of links to the first one behind `after`, going round: passing the last
  /// answer steps through links that lie on top of each other. Cost: one pass over the pool.
  CNode *FindClosestNode(unsigned long x, unsigned long y);
  CLink *FindClosestLink(unsigned long x, unsigned long y, unsigned long after);

  /// Writes how much of the pools is in use, and the links without one in the other direction.
  /// False, with a box, if the file cannot be created. Cost: one pass over the pools.
  bool Report(char const *file) const;

 private:
  friend struct CNetworkAccess;
  using CLinkTypeName = std::array<char, 32>;

  void InsertInList(std::uint32_t &head, unsigned long link);
  void RemoveFromList(std::uint32_t *head, unsigned long link);
  int ListLength(std::uint32_t head) const;
  CNode const &NodeAt(std::uint32_t index) const;
  std::uint32_t LinkBetween(std::uint32_t from, std::uint32_t to) const;
  std::uint32_t FindOrCreateNode(double x, double y, CNetworkIndex &index);
  CLink *Connect(std::uint32_t from, std::uint32_t to, std::uint32_t type, std::uint32_t id,
                 CNetworkIndex &index);

  bool ReadSDK(char const *file);
  bool ReadIOS(char const *file);
  bool WriteSDK(char const *file) const;
  bool WriteIOS(char const *file) const;
  template <class Source>
  bool ReadPools(Source &source);
  template <class Target>
  void WritePools(Target &target) const;
  void SetStandardLinkTypes();

  bool ReadDataDefYear(char *rest, char const *base);
  bool ReadDataDefDelta(char *rest, bool add);
  int GetTemporalDataIndex(int year) const;
  void CreateYear(int year);
  void AppendDelta(int year, CLink const *link, bool add);
  void ApplyDelta(CDelta const *delta, CNetworkIndex &index);

  CRecordPool<CNode> nodes;
  CRecordPool<CLink> links;
  CRecordPool<CIdListElem> idListElems;
  CRecordPool<CLinkTypeName> linkTypes;
  std::string fileName;
  bool linkTypesRead = false;
  std::int32_t loadedYearIndex = -1;
  std::vector<CTemporalData> temporalData;
};

/// Distances in the plane of whole numbers. Differences are taken in 32 bits and wrap around.
QUILLAVEN_API double dPointToPoint(CPoint a, CPoint b);
/// From p to the unbounded line through a and b; not a number if a and b are the same point.
QUILLAVEN_API double dPointToLine(CPoint p, CPoint a, CPoint b);
/// From p to the segment between a and b, which may be one point.
QUILLAVEN_API double dPointToLineSegment(CPoint p, CPoint a, CPoint b);
