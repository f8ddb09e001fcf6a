// A picture as a list of operations: what a dialog paints, and a window carries out.
//
//   CDrawing drawing;
//   dialog.OnPaint(drawing);
//   for (CDrawOperation const &operation : drawing.Operations())
//     if (operation.kind == CDrawOperation::Kind::ellipse) DrawEllipse(operation.place);
//
// Places are pixels of the dialog's client area. A rectangle or ellipse fills its place up to the
// pixel before right and bottom, outline included. A pen or brush is in force until the next one.

#pragma once

#include <vector>

#include <quillaven/platform/geometry.h>

struct CDrawOperation {
  enum class Kind {
    pen,        // colour and width of lines and outlines
    brush,      // colour inside rectangles and ellipses
    rectangle,  // place
    moveTo,     // left and top of place
    lineTo,     // from where the last moveTo or lineTo went up to left and top of place, less the
                // last pixel
    ellipse,    // place
    icon        // the dialog's icon, in place
  };
  Kind kind = Kind::rectangle;
  CRect place;
  unsigned long colour = 0;  // 0x00BBGGRR
  int width = 1;             // of a pen, in pixels

  bool operator==(CDrawOperation const &other) const {
    return kind == other.kind && place.left == other.place.left && place.top == other.place.top &&
           place.right == other.place.right && place.bottom == other.place.bottom &&
           colour == other.colour && width == other.width;
  }
};

/// Collects operations in the order in which they are to be carried out.
class CDrawing {
 public:
  using Kind = CDrawOperation::Kind;

  static constexpr unsigned long kBlack = 0x000000;
  static constexpr unsigned long kWhite = 0xFFFFFF;

  void Pen(unsigned long colour, int width) {
    m_operations.push_back({Kind::pen, {}, colour, width});
  }
  /// The device's own: a black pen of width 1.
  void DefaultPen() { Pen(kBlack, 1); }
  void Brush(unsigned long colour) { m_operations.push_back({Kind::brush, {}, colour, 1}); }
  /// The device's own: white.
  void DefaultBrush() { Brush(kWhite); }
  void Rectangle(CRect const &place) { m_operations.push_back({Kind::rectangle, place, 0, 1}); }
  void MoveTo(int x, int y) { m_operations.push_back({Kind::moveTo, {x, y, 0, 0}, 0, 1}); }
  void LineTo(int x, int y) { m_operations.push_back({Kind::lineTo, {x, y, 0, 0}, 0, 1}); }
  void Ellipse(CRect const &place) { m_operations.push_back({Kind::ellipse, place, 0, 1}); }
  void Icon(CRect const &place) { m_operations.push_back({Kind::icon, place, 0, 1}); }

  std::vector<CDrawOperation> const &Operations() const { return m_operations; }

 private:
  std::vector<CDrawOperation> m_operations;
};
