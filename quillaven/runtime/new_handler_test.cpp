#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <quillaven/runtime/new_handler.h>
#include <quillaven/runtime/new_handler_internal.h>

#include "tests/support/allocation_count.h"
#include "tests/support/recording_application.h"
#include "tests/support/temporary_directory.h"

namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

std::string const kOutOfMemory = "Out of memory\nClose some applications and try again";
// The built-in application writes the title and the text of a box to standard error.
std::string const kOutOfMemoryOnScreen = "Quillaven\n" + kOutOfMemory + "\n";

void *AskForTheImpossible() {
  return ::operator new(std::numeric_limits<std::ptrdiff_t>::max());
}

void *AskQuietlyForTheImpossible() {
  return ::operator new(std::numeric_limits<std::ptrdiff_t>::max(), std::nothrow);
}

static_assert(!std::is_polymorphic_v<CNewHandlerInstaller>);
static_assert(std::is_copy_assignable_v<CNewHandlerInstaller>);
static_assert(!std::is_copy_constructible_v<CNewHandlerInstaller>);

TEST(NewHandler, FromTheLoadOnIsTheVerboseOne) {
  AllocationBehaviour const behaviour = CurrentAllocationBehaviour();
  EXPECT_EQ(behaviour.mode, 1);
  EXPECT_EQ(behaviour.handler, QuillavenVerboseNewHandler);
  EXPECT_TRUE(CNewHandlerInstaller::IsSomethingInstalled());
}

TEST(NewHandler, VerboseShowsTheBoxAndThrows) {
  RecordingApplication application;
  EXPECT_THROW(QuillavenVerboseNewHandler(1000), std::bad_alloc);
  ASSERT_EQ(application.boxes.size(), 1U);
  EXPECT_EQ(application.boxes[0].text, kOutOfMemory);
  EXPECT_EQ(application.boxes[0].title, "Quillaven");
  EXPECT_EQ(application.boxes[0].type, 0U);
}

TEST(NewHandler, VerboseServesAFailedAllocation) {
  RecordingApplication application;
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_EQ(application.boxes.size(), 1U);
}

TEST(NewHandler, ThrowsTheStandardFailureWithTheTextOfTheStandardLibrary) {
  RecordingApplication application;
  for (auto handler : {QuillavenVerboseNewHandler, AnsiCPPNewHandler}) {
    try {
      handler(1);
      FAIL() << "nothing was thrown";
    } catch (std::bad_alloc const &failure) {
      EXPECT_STREQ(failure.what(), std::bad_alloc().what());
    }
  }
}

// An application whose box tells of itself, and fails.
struct FailingApplication : CApplication {
  FailingApplication() : before(SetApplication(this)) {}
  ~FailingApplication() override { SetApplication(before); }
  FailingApplication(FailingApplication const &) = delete;
  FailingApplication &operator=(FailingApplication const &) = delete;
  int DoMessageBox(char const * /*text*/, char const * /*title*/, unsigned int /*type*/,
                   unsigned int /*helpId*/) override {
    std::fprintf(stderr, "[box %d]", ++boxes);
    return Fail();
  }
  virtual int Fail() = 0;
  CApplication *before;
  int boxes = 0;
};

// One whose box cannot get the memory that it needs.
struct HungryApplication : FailingApplication {
  int Fail() override { return AskForTheImpossible() != nullptr; }
};

// One whose box throws something of its own.
struct ThrowingApplication : FailingApplication {
  int Fail() override { throw std::string("no screen"); }
};

testing::Matcher<std::string const &> OneBox() {
  return AllOf(HasSubstr("[box 1]"), Not(HasSubstr("[box 2]")));
}

TEST(NewHandler, ABoxThatRunsOutOfMemoryBringsNoSecondBox) {
  HungryApplication application;
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_EQ(application.boxes, 1);
  EXPECT_EQ(CurrentAllocationBehaviour().handler, QuillavenVerboseNewHandler);
}

TEST(NewHandlerDeathTest, VerboseWithExitShowsTheBoxAndEndsTheProcess) {
  EXPECT_EXIT(QuillavenVerboseNewHandlerWithExit(1), ExitedWithCode(1),
              HasSubstr(kOutOfMemoryOnScreen));
  EXPECT_EXIT(
      {
        CNewHandlerInstaller const guard(QuillavenVerboseNewHandlerWithExit);
        AskForTheImpossible();
      },
      ExitedWithCode(1), HasSubstr(kOutOfMemoryOnScreen));
}

TEST(NewHandlerDeathTest, VerboseWithExitEndsTheProcessEvenWhenTheBoxRunsOutOfMemory) {
  EXPECT_EXIT(
      {
        HungryApplication const application;
        QuillavenVerboseNewHandlerWithExit(1);
      },
      ExitedWithCode(1), OneBox());
}

TEST(NewHandler, ABoxThatThrowsDoesNotReplaceTheFailure) {
  ThrowingApplication application;
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_EQ(AskQuietlyForTheImpossible(), nullptr);
  EXPECT_EQ(application.boxes, 2);
  EXPECT_EQ(CurrentAllocationBehaviour().handler, QuillavenVerboseNewHandler);
}

TEST(NewHandlerDeathTest, VerboseWithExitEndsTheProcessEvenWhenTheBoxThrows) {
  EXPECT_EXIT(
      {
        ThrowingApplication const application;
        QuillavenVerboseNewHandlerWithExit(1);
      },
      ExitedWithCode(1), OneBox());
}

TEST(NewHandler, AnsiThrowsWithNoBox) {
  RecordingApplication application;
  CNewHandlerInstaller const guard(AnsiCPPNewHandler);
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_THROW(AnsiCPPNewHandler(7), std::bad_alloc);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(NewHandler, VCHasTheNothrowFormGiveNullUntilTheGuardIsGone) {
  RecordingApplication application;
  {
    CNewHandlerInstaller const guard(VCNewHandler);
    EXPECT_EQ(VCNewHandler(7), 0);
    EXPECT_EQ(AskQuietlyForTheImpossible(), nullptr);
    EXPECT_TRUE(application.boxes.empty());
  }
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_EQ(application.boxes.size(), 1U);
}

// The ordinary form may not give null in standard C++: it throws, quietly.
TEST(NewHandler, VCHasTheOrdinaryFormThrow) {
  RecordingApplication application;
  CNewHandlerInstaller const guard(VCNewHandler);
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_TRUE(application.boxes.empty());
}

unsigned int g_bytesTold = 99;

int MakeRoom(unsigned int bytes) {
  g_bytesTold = bytes;
  RefuseAllocationsFrom(0);
  return 1;
}

TEST(NewHandler, ThatMadeRoomHasTheAllocationTriedAgain) {
  CNewHandlerInstaller const guard(MakeRoom);
  RefuseAllocationsFrom(1000);
  void *const memory = ::operator new(1000);
  EXPECT_NE(memory, nullptr);
  ::operator delete(memory);
  EXPECT_EQ(g_bytesTold, 0U);  // the standard library does not tell the size
}

TEST(NewHandler, NullStandsForNone) {
  RecordingApplication application;
  CNewHandlerInstaller const guard(nullptr);
  EXPECT_EQ(std::get_new_handler(), nullptr);
  EXPECT_THROW(AskForTheImpossible(), std::bad_alloc);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(NewHandlerGuards, NestAndBringBackWhatTheyFound) {
  AllocationBehaviour const before = CurrentAllocationBehaviour();
  {
    CNewHandlerInstaller const outer(VCNewHandler);
    AllocationBehaviour const outside = CurrentAllocationBehaviour();
    EXPECT_EQ(outside.handler, VCNewHandler);
    EXPECT_EQ(outside.mode, 1);
    {
      CNewHandlerInstaller const inner(AnsiCPPNewHandler);
      EXPECT_EQ(CurrentAllocationBehaviour().handler, AnsiCPPNewHandler);
    }
    EXPECT_EQ(CurrentAllocationBehaviour(), outside);
  }
  EXPECT_EQ(CurrentAllocationBehaviour(), before);
}

void HandlerOfTheApplication() {
  throw std::bad_alloc();
}

TEST(NewHandlerGuards, BringBackAHandlerThatTheStandardLibraryWasGiven) {
  std::new_handler const before = std::set_new_handler(HandlerOfTheApplication);
  {
    CNewHandlerInstaller const guard(AnsiCPPNewHandler);
    EXPECT_NE(std::get_new_handler(), HandlerOfTheApplication);
  }
  EXPECT_EQ(std::get_new_handler(), HandlerOfTheApplication);
  std::set_new_handler(before);
}

TEST(NewHandlerGuards, AssignedBringBackWhatTheOtherFound) {
  AllocationBehaviour const before = CurrentAllocationBehaviour();
  {
    CNewHandlerInstaller const outer(VCNewHandler);
    CNewHandlerInstaller inner(AnsiCPPNewHandler);
    CNewHandlerInstaller const &same = (inner = outer);
    EXPECT_EQ(&same, &inner);
    EXPECT_EQ(CurrentAllocationBehaviour().handler, AnsiCPPNewHandler);
  }
  EXPECT_EQ(CurrentAllocationBehaviour(), before);
  {
    CNewHandlerInstaller const outer(VCNewHandler);
    {
      CNewHandlerInstaller inner(AnsiCPPNewHandler);
      inner = outer;
    }
    // The inner one has brought back what the outer one found, not the outer one's handler.
    EXPECT_EQ(CurrentAllocationBehaviour(), before);
  }
  EXPECT_EQ(CurrentAllocationBehaviour(), before);
}

TEST(NewHandlerGuards, ThatAreGoneStillCountAsInstalled) {
  { CNewHandlerInstaller const guard(AnsiCPPNewHandler); }
  EXPECT_TRUE(CNewHandlerInstaller::IsSomethingInstalled());
}

TEST(CheckMemoryAvailable, ReturnsWhenTheMemoryIsThere) {
  RecordingApplication application;
  AllocationBehaviour const before = CurrentAllocationBehaviour();
  CheckMemoryAvailable(0, "x");
  CheckMemoryAvailable(100000, "x");
  EXPECT_TRUE(application.boxes.empty());
  EXPECT_EQ(CurrentAllocationBehaviour(), before);
}

TEST(CheckMemoryAvailable, AsksForEveryByteAndGivesThemBack) {
  long const before = AllocationCount();
  CheckMemoryAvailable(12345, "x");
  EXPECT_EQ(AllocationCount(), before + 1);
  RefuseAllocationsFrom(12346);
  CheckMemoryAvailable(12345, "x");
  RefuseAllocationsFrom(0);
}

TEST(CheckMemoryAvailableDeathTest, TellsThatTheMemoryIsNotThereAndEndsTheProcess) {
  EXPECT_EXIT(
      {
        RefuseAllocationsFrom(12345);
        CheckMemoryAvailable(12345, "x");
      },
      ExitedWithCode(1),
      AllOf(HasSubstr("Quillaven\nNot enough memory to run 'x'\n"
                      "Try again with a lower memory demanding simulation.\n"),
            Not(HasSubstr("Out of memory"))));
}

// The box is asked of the application in force when the memory is not there.
struct TellingApplication : CApplication {
  int DoMessageBox(char const *text, char const *title, unsigned int type,
                   unsigned int /*helpId*/) override {
    std::fprintf(stderr, "[%s|%s|%u|%d]", title, text, type,
                 CurrentAllocationBehaviour().handler == AnsiCPPNewHandler);
    return 1;
  }
};

// The memory that the box cannot get would bring a second box otherwise.
TEST(CheckMemoryAvailableDeathTest, ShowsItsBoxWithAQuietHandlerInForce) {
  TellingApplication application;
  CApplication *const before = SetApplication(&application);
  EXPECT_EXIT(
      {
        RefuseAllocationsFrom(4000000000U);
        CheckMemoryAvailable(4000000000U, "a model");
      },
      ExitedWithCode(1),
      HasSubstr("[Quillaven|Not enough memory to run 'a model'\nTry again with a lower memory "
                "demanding simulation.|0|1]"));
  SetApplication(before);
}

TEST(CheckMemoryAvailableDeathTest, EndsTheProcessEvenWhenTheBoxRunsOutOfMemory) {
  EXPECT_EXIT(
      {
        HungryApplication const application;
        RefuseAllocationsFrom(4000000000U);
        CheckMemoryAvailable(4000000000U, "x");
      },
      ExitedWithCode(1), OneBox());
}

TEST(CheckMemoryAvailableDeathTest, EndsTheProcessEvenWhenTheBoxThrows) {
  EXPECT_EXIT(
      {
        ThrowingApplication const application;
        RefuseAllocationsFrom(4000000000U);
        CheckMemoryAvailable(4000000000U, "x");
      },
      ExitedWithCode(1), OneBox());
}

// There is no memory for the text either.
TEST(CheckMemoryAvailableDeathTest, EndsTheProcessWithoutABoxWhereThereIsNoMemoryForItsText) {
  EXPECT_EXIT(
      {
        RefuseAllocationsFrom(1);
        CheckMemoryAvailable(4000000000U, "x");
      },
      ExitedWithCode(1), Not(HasSubstr("memory")));
}

// What a command writes, its boxes first, with its status as the last line.
std::string WrittenBy(std::string const &command) {
  TemporaryDirectory const directory;
  std::string const line = command + " > \"" + directory.Path("out") + "\" 2>&1";
  int const status = std::system(line.c_str());
  // Where a command ends by a signal too, the status proper is the second byte.
  int const exitStatus = status > 255 ? status / 256 : status;
  return directory.ReadText("out") + "status " + std::to_string(exitStatus) + "\n";
}

TEST(LoadOfTheLibrary, InstallsTheVerboseHandlerAndTakesItAwayAtTheEnd) {
  EXPECT_EQ(WrittenBy(LOAD_ACTION_STATIC),
            "at the start a handler, something installed\nat the end no handler\nstatus 0\n");
}

TEST(LoadOfTheLibrary, TellsOfFailedAllocationsFromTheStart) {
  for (std::string const program : {LOAD_ACTION_STATIC, LOAD_ACTION_SHARED})
    EXPECT_THAT(WrittenBy(program + " ask"),
                testing::StartsWith(kOutOfMemoryOnScreen + "bad_alloc\n"));
}

TEST(LoadOfTheLibrary, OfTheSharedOneInstallsTheHandlerBeforeMain) {
  EXPECT_THAT(WrittenBy(LOAD_ACTION_SHARED),
              testing::StartsWith("at the start a handler, something installed\n"));
}

TEST(LoadOfTheLibrary, InstallsNothingAfterAGuardOfTheApplication) {
  EXPECT_EQ(WrittenBy(LOAD_ACTION_AFTER_GUARD + std::string(" ask")),
            "bad_alloc\nat the end no handler\nstatus 4\n");
}

TEST(LoadOfTheLibrary, TakesAGuardOfTheApplicationForSomethingInstalled) {
  EXPECT_EQ(WrittenBy(LOAD_ACTION_AFTER_GUARD),
            "at the start a handler, something installed\nat the end no handler\nstatus 0\n");
}

TEST(LoadOfTheLibrary, WithoutMemoryForTheGuardLeavesTheProcessAsItWas) {
  EXPECT_EQ(WrittenBy(LOAD_ACTION_WITHOUT_MEMORY),
            "at the start no handler, nothing installed\nat the end no handler\nstatus 0\n");
}

TEST(LoadOfTheLibrary, OnlyTheFirstGuardOfAProcessInstallsSomethingForGood) {
  EXPECT_EQ(WrittenBy(LOAD_ACTION_WITHOUT_MEMORY + std::string(" guard")),
            "at the start no handler, nothing installed\n"
            "within a guard a handler, something installed\n"
            "behind it no handler, something installed\n"
            "at the end no handler\nstatus 0\n");
}

TEST(LoadOfTheLibrary, LetsAProgramAskInAdvance) {
  EXPECT_THAT(WrittenBy(LOAD_ACTION_SHARED + std::string(" check")),
              AllOf(HasSubstr("Quillaven\nNot enough memory to run 'a model'\nTry again with a "
                              "lower memory demanding simulation.\n"),
                    HasSubstr("status 1\n"), Not(HasSubstr("at the start"))));
}

// The allocator of a build with checking ends the process by itself.
#if defined(REAL_MEMORY)

// Compilers take malloc for a function that does not throw.
TEST(NewHandler, DoesNotServeMallocInMode1) {
  RecordingApplication application;
  ASSERT_EQ(CurrentAllocationBehaviour().mode, 1);
  std::size_t volatile const tooMuch = std::numeric_limits<std::ptrdiff_t>::max();
  void *const block = std::malloc(tooMuch);
  EXPECT_EQ(block, nullptr);
  std::free(block);
  EXPECT_TRUE(application.boxes.empty());
}

TEST(MemoryOfTheSystem, ThatNoMachineHasIsToldByTheVerboseHandler) {
  EXPECT_EQ(WrittenBy(REAL_MEMORY " new 1000000000000000"),
            kOutOfMemoryOnScreen + "bad_alloc\nstatus 0\n");
}

TEST(MemoryOfTheSystem, ThatNoMachineHasIsNullToTheNothrowFormUnderVC) {
  EXPECT_EQ(WrittenBy(REAL_MEMORY " quiet 1000000000000000"), "null\nstatus 0\n");
}

#endif

// The allocator of the system, held to a gigabyte by the system. Builds with checking have another
// allocator, which ends the process by itself.
#if defined(REAL_MEMORY)

std::string WrittenWithinOneGigabyte(std::string const &arguments) {
  return WrittenBy("ulimit -v 1000000; " REAL_MEMORY " " + arguments);
}

TEST(MemoryOfTheSystem, ThatIsNotThereEndsTheCheckWithStatus1) {
  EXPECT_EQ(WrittenWithinOneGigabyte("check 4000000000"),
            "Quillaven\nNot enough memory to run 'x'\n"
            "Try again with a lower memory demanding simulation.\nstatus 1\n");
}

TEST(MemoryOfTheSystem, ThatIsThereLetsTheProgramGoOn) {
  EXPECT_EQ(WrittenWithinOneGigabyte("check 100000000"), "there\nstatus 0\n");
}

TEST(MemoryOfTheSystem, ThatIsNotThereIsToldByTheVerboseHandler) {
  EXPECT_EQ(WrittenWithinOneGigabyte("new 4000000000"),
            kOutOfMemoryOnScreen + "bad_alloc\nstatus 0\n");
}

TEST(MemoryOfTheSystem, ThatIsNotThereIsNullToTheNothrowFormUnderVC) {
  EXPECT_EQ(WrittenWithinOneGigabyte("quiet 4000000000"), "null\nstatus 0\n");
}

#endif

}  // namespace
