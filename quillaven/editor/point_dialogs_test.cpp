#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <quillaven/editor/point_dialogs_internal.h>

#include "tests/support/dialog_application.h"

namespace {

using Kind = CControl::Kind;

struct Row {
  int id;
  Kind kind;
  char const *text;
  int x, y, width, height;
};

void ExpectControls(CDialog const &dialog, std::vector<Row> const &rows) {
  auto const &controls = dialog.Template().controls;
  ASSERT_EQ(controls.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE(i);
    CControl const &control = controls[i];
    EXPECT_EQ(control.id, rows[i].id);
    EXPECT_EQ(control.kind, rows[i].kind);
    EXPECT_EQ(control.text, rows[i].text);
    EXPECT_EQ(control.place.left, rows[i].x);
    EXPECT_EQ(control.place.top, rows[i].y);
    EXPECT_EQ(control.place.right - control.place.left, rows[i].width);
    EXPECT_EQ(control.place.bottom - control.place.top, rows[i].height);
  }
}

CEditPointDlg Between(float lower, float upper) {
  CEditPointDlg dialog;
  dialog.Lower = lower;
  dialog.Upper = upper;
  OpenInPixels(dialog);
  return dialog;
}

TEST(EditPointDialog, HasTheControlsOfItsTemplate) {
  CEditPointDlg const dialog;
  EXPECT_EQ(dialog.Template().resource, 5002);
  EXPECT_EQ(dialog.Title(), "Edit point");
  EXPECT_EQ(dialog.Template().width, 149);
  EXPECT_EQ(dialog.Template().height, 55);
  ExpectControls(dialog, {{1, Kind::defaultButton, "OK", 95, 4, 50, 14},
                          {2, Kind::button, "Cancel", 95, 22, 50, 14},
                          {-1, Kind::text, "X", 4, 6, 8, 8},
                          {-1, Kind::text, "Y", 4, 22, 8, 8},
                          {5016, Kind::edit, "", 17, 4, 47, 13},
                          {5017, Kind::edit, "", 17, 20, 47, 13},
                          {5018, Kind::text, "N.B.: X between %g and %g", 4, 43, 142, 8}});
  for (int const id : {5016, 5017}) {
    EXPECT_TRUE(dialog.Control(id).rightAligned);
    EXPECT_TRUE(dialog.Control(id).scrolls);
    EXPECT_FALSE(dialog.Control(id).readOnly);
  }
}

TEST(EditPointDialog, FieldsAreZeroAtFirst) {
  CEditPointDlg const dialog;
  EXPECT_EQ(dialog.X, 0.0F);
  EXPECT_EQ(dialog.Y, 0.0F);
}

TEST(EditPointDialog, LeavesTheFirstFocusToTheWindow) {
  CEditPointDlg dialog;
  EXPECT_EQ(dialog.OnInitDialog(), 1);
  EXPECT_EQ(dialog.TakeFocusRequest(), -1);
}

TEST(EditPointDialog, ShowsThePointAndTheBoundsInTheNote) {
  CEditPointDlg dialog;
  dialog.X = 2.25F;
  dialog.Y = -0.5F;
  dialog.Lower = 1;
  dialog.Upper = 3.125F;
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(5016).text, "2.25");
  EXPECT_EQ(dialog.Control(5017).text, "-0.5");
  EXPECT_EQ(dialog.Control(5018).text, "N.B.: X between 1 and 3.125");
}

TEST(EditPointDialog, RefusesBothBoundsAndPassesWhatLiesBetween) {
  for (char const *refused : {"1", "3", "0.5", "3.5", "-1e30"}) {
    SCOPED_TRACE(refused);
    RecordingApplication application;
    CEditPointDlg dialog = Between(1, 3);
    dialog.Type(5016, refused);
    dialog.Press(1);
    EXPECT_EQ(dialog.Result(), 0U);
    ASSERT_EQ(application.boxes.size(), 1U);
    EXPECT_EQ(application.boxes[0].text, "N.B.: X between 1 and 3");  // unchanged by the pattern
    EXPECT_EQ(application.boxes[0].title, "Quillaven");
    EXPECT_EQ(application.boxes[0].type, 0U);
    EXPECT_EQ(application.boxes[0].helpId, 0U);
    EXPECT_EQ(dialog.TakeFocusRequest(), 5016);
    EXPECT_EQ(dialog.Control(5016).text, refused);
    dialog.Type(5016, "2");
    dialog.Press(1);
    EXPECT_EQ(dialog.Result(), 1U);
    EXPECT_EQ(dialog.X, 2.0F);
    EXPECT_EQ(application.boxes.size(), 1U);
  }
}

TEST(EditPointDialog, EqualBoundsForbidAChangeOfXAndEmptyTheNote) {
  RecordingApplication application;
  CEditPointDlg dialog;
  dialog.X = 2;
  dialog.Lower = 2;
  dialog.Upper = 2;
  OpenInPixels(dialog);
  EXPECT_TRUE(dialog.Control(5016).readOnly);
  EXPECT_EQ(dialog.Control(5018).text, "");
  dialog.Type(5016, "7");
  dialog.Type(5017, "1e30");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 1U);
  EXPECT_EQ(dialog.X, 2.0F);
  EXPECT_EQ(dialog.Y, 1e30F);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(EditPointDialog, BoundsThatAreTurnedRoundForbidNothing) {
  RecordingApplication application;
  CEditPointDlg dialog = Between(3, 1);
  EXPECT_EQ(dialog.Control(5018).text, "N.B.: X between 3 and 1");
  EXPECT_FALSE(dialog.Control(5016).readOnly);
  dialog.Type(5016, "99");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 1U);
  EXPECT_EQ(dialog.X, 99.0F);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(EditPointDialog, SaysItAllWhenTheNoteIsEmpty) {
  // The note is empty when the bounds were equal as the dialog opened.
  RecordingApplication application;
  CEditPointDlg dialog = Between(2, 2);
  dialog.Lower = 1;
  dialog.Upper = 3;
  dialog.Press(1);  // x is 0
  EXPECT_EQ(dialog.Result(), 0U);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "The X-value should be between 1 and 3");
}

TEST(EditPointDialog, AnEmptyNoteStaysEmptyWhenTheDialogOpensAgain) {
  CEditPointDlg dialog = Between(2, 2);
  dialog.Lower = 1;
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(5018).text, "");
}

TEST(EditPointDialog, AsksForANumberBeforeItLooksAtTheBounds) {
  RecordingApplication application;
  CEditPointDlg dialog = Between(1, 3);
  dialog.Type(5016, "2");
  dialog.Type(5017, "high");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 0U);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, "Please enter a number.");
  EXPECT_EQ(dialog.TakeFocusRequest(), 5017);
  EXPECT_EQ(dialog.Control(5017).text, "high");
}

TEST(EditPointDialog, CancelLeavesTheFields) {
  CEditPointDlg dialog = Between(1, 3);
  dialog.Type(5016, "2");
  dialog.Press(2);
  EXPECT_EQ(dialog.Result(), 2U);
  EXPECT_EQ(dialog.X, 0.0F);
}

TEST(MarginsDialog, HasTheControlsOfItsTemplate) {
  CMarginsDlg const dialog;
  EXPECT_EQ(dialog.Template().resource, 5001);
  EXPECT_EQ(dialog.Title(), "Options");
  EXPECT_EQ(dialog.Template().width, 186);
  EXPECT_EQ(dialog.Template().height, 95);
  ExpectControls(dialog, {{1, Kind::defaultButton, "OK", 129, 7, 50, 14},
                          {2, Kind::button, "Cancel", 129, 24, 50, 14},
                          {-1, Kind::text, "min X", 46, 77, 18, 8},
                          {5005, Kind::edit, "", 67, 74, 40, 14},
                          {5006, Kind::edit, "", 139, 74, 40, 14},
                          {-1, Kind::text, "max X", 116, 77, 20, 8},
                          {-1, Kind::text, "max Y", 7, 15, 20, 8},
                          {5007, Kind::edit, "", 33, 12, 40, 14},
                          {-1, Kind::text, "min Y", 10, 49, 18, 8},
                          {5008, Kind::edit, "", 33, 46, 40, 14}});
}

TEST(MarginsDialog, EachFieldBelongsToItsEdit) {
  CMarginsDlg dialog;
  EXPECT_EQ(dialog.MaxX, 0.0F);
  EXPECT_EQ(dialog.MaxY, 0.0F);
  EXPECT_EQ(dialog.MinX, 0.0F);
  EXPECT_EQ(dialog.MinY, 0.0F);
  dialog.MaxX = 1;
  dialog.MaxY = 2;
  dialog.MinX = 3;
  dialog.MinY = 4;
  OpenInPixels(dialog);
  EXPECT_EQ(dialog.Control(5006).text, "1");
  EXPECT_EQ(dialog.Control(5007).text, "2");
  EXPECT_EQ(dialog.Control(5005).text, "3");
  EXPECT_EQ(dialog.Control(5008).text, "4");
  dialog.Type(5006, "5");
  dialog.Type(5007, "6");
  dialog.Type(5005, "7");
  dialog.Type(5008, "8");
  dialog.Press(1);
  EXPECT_EQ(dialog.MaxX, 5.0F);
  EXPECT_EQ(dialog.MaxY, 6.0F);
  EXPECT_EQ(dialog.MinX, 7.0F);
  EXPECT_EQ(dialog.MinY, 8.0F);
}

TEST(MarginsDialog, AcceptsAMaximumBelowTheMinimum) {
  RecordingApplication application;
  CMarginsDlg dialog;
  OpenInPixels(dialog);
  dialog.Type(5006, "-5");
  dialog.Type(5005, "5");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 1U);
  EXPECT_EQ(dialog.MaxX, -5.0F);
  EXPECT_EQ(dialog.MinX, 5.0F);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(MarginsDialog, RefusesWhatIsNoNumber) {
  RecordingApplication application;
  CMarginsDlg dialog;
  OpenInPixels(dialog);
  dialog.Type(5008, "low");
  dialog.Press(1);
  EXPECT_EQ(dialog.Result(), 0U);
  EXPECT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(dialog.TakeFocusRequest(), 5008);
}

}  // namespace
