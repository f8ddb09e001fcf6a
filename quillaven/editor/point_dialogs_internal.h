// The two small dialogs of the spline tool: the values of a point, and the limits of the display.
//
//   CEditPointDlg dialog;
//   dialog.X = 2;
//   dialog.Lower = 1;                       // x must lie between these; equal ones forbid a change
//   dialog.Upper = 3;
//   if (dialog.DoModal() == CDialog::kOk) table.Add(dialog.X, dialog.Y);
//
// The fields are read only after the result 1; Cancel leaves the caller's values alone.

#pragma once

#include <quillaven/editor/dialog.h>

/// The x and y of a point, with a range for x. Only x is tested.
class CEditPointDlg : public CDialog {
 public:
  static constexpr int kX = 5016;
  static constexpr int kY = 5017;
  static constexpr int kNote = 5018;

  CEditPointDlg();
  int OnInitDialog() override;

  float X = 0;
  float Y = 0;
  float Lower = 0;
  float Upper = 0;

 protected:
  bool DoDataExchange(bool save) override;
  void OnOK() override;
};

/// Four limits, which may be any numbers: they are not compared.
class CMarginsDlg : public CDialog {
 public:
  static constexpr int kMinX = 5005;
  static constexpr int kMaxX = 5006;
  static constexpr int kMaxY = 5007;
  static constexpr int kMinY = 5008;

  CMarginsDlg();

  float MaxX = 0;
  float MaxY = 0;
  float MinX = 0;
  float MinY = 0;

 protected:
  bool DoDataExchange(bool save) override;
};
