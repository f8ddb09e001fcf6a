// Draw operations of a dialog, carried out by the system's graphics.
//
//   PaintBuffer buffer(context, width, height);
//   Draw(buffer.Context(), drawing, icon.Large());
//   buffer.Show();

#pragma once

#include <quillaven/editor/dialog.h>

using ContextHandle = struct HDC__ *;  // HDC and HICON, without the system's header
using IconHandle = struct HICON__ *;

void Draw(ContextHandle context, CDrawing const &drawing, IconHandle icon);

/// A picture as an icon of the system, large and small. Nothing for a picture that is none.
class DialogIcon {
 public:
  DialogIcon() = default;
  explicit DialogIcon(CIcon const *icon);
  ~DialogIcon();
  DialogIcon(DialogIcon const &) = delete;
  DialogIcon &operator=(DialogIcon const &) = delete;

  IconHandle Large() const { return m_large; }
  IconHandle Small() const { return m_small; }

 private:
  IconHandle m_large = nullptr;
  IconHandle m_small = nullptr;
};

/// A picture of its own, which replaces that of a context in one go, so that nothing flickers. It
/// begins in the colour of dialogs.
class PaintBuffer {
 public:
  PaintBuffer(ContextHandle target, int width, int height);
  ~PaintBuffer();
  PaintBuffer(PaintBuffer const &) = delete;
  PaintBuffer &operator=(PaintBuffer const &) = delete;

  ContextHandle Context() const { return m_context; }
  void Show();

 private:
  ContextHandle m_target;
  ContextHandle m_context;
  void *m_bitmap;
  void *m_before;
  int m_width;
  int m_height;
};
