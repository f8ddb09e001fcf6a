// quillaven: rasters, legends and pictures from the command line.

#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>

#include "apps/commands.h"
#include "apps/console.h"
#include "apps/network_options.h"

namespace {

constexpr int kCommandFailed = 1;
constexpr int kBadArguments = 2;

void AddDraw(CLI::App &program, DrawOptions &options) {
  CLI::App *command = program.add_subcommand("draw", "Draw an ASCII grid into a picture");
  command->add_option("grid", options.grid, "The grid to read")->required();
  command->add_option("--legend", options.legend, "Name of a legend in the folder Legends")
      ->required();
  command->add_option("--out", options.picture, "The picture to write: .bmp or .png")->required();
  command->add_option("--help-dir", options.helpDirectory,
                      "Folder that holds Legends and Palettes (default: the program's own)");
  command->add_option("--zoom", options.zoom, "Pixels along a cell")
      ->check(CLI::Range(1, 64))
      ->capture_default_str();
  command->add_option("--stamp", options.stamp, "Text for the top left corner");
  command
      ->add_option("--fine", options.fine, "Cells along a coarse block; one value for each block")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command->footer(
      "Example: quillaven draw landuse.asc --legend Landuse --zoom 2 --out landuse.png");
  command->callback([&options] { Draw(options); });
}

void AddInfo(CLI::App &program, std::string &file) {
  CLI::App *command = program.add_subcommand("info", "Tell what a file holds");
  command
      ->add_option("file", file,
                   "A grid, Idrisi pair, map file, legend, palette, network, its vector text or "
                   "years, function table, bitmap or PNG")
      ->required();
  command->footer("Example: quillaven info landuse.asc");
  command->callback([&file] { Info(file); });
}

void AddConvert(CLI::App &program, ConvertOptions &options) {
  CLI::App *command = program.add_subcommand(
      "convert",
      "Convert a raster between grids (.asc), Idrisi pairs (.doc, .img) and maps (.qmp)");
  command->add_option("in", options.in, "The file to read")->required();
  command->add_option("out", options.out, "The file to write, another than that")->required();
  command->add_option("--type", options.type, "Cells as float, short or byte")
      ->check(CLI::IsMember({"float", "short", "byte"}))
      ->capture_default_str();
  command->add_flag("--as-byte", options.asByte,
                    "Write an Idrisi image of float cells as bytes; with nothing else");
  command->footer(
      "Position and size of the cells are not kept: a grid is written with its corner at 0 0 and "
      "cells of\nsize 1, an Idrisi pair from 0 to 1, and a map has neither.\n\n"
      "Example: quillaven convert landuse.asc landuse.doc --type byte");
  command->callback([&options] { Convert(options); });
}

void AddColors(CLI::App &program, ColorOptions &options) {
  CLI::App *group =
      program.add_subcommand("colors", "Spread colours over the hues, or brighten one");
  group->require_subcommand(1);
  group->footer("Example: quillaven colors spread 6");
  CLI::Range const scale(0, 252);
  CLI::App *spread = group->add_subcommand("spread", "Print so many colours, from red on");
  spread->add_option("count", options.count, "How many")->required()->check(CLI::Range(1, 100000));
  spread->add_option("--saturation", options.saturation, "0 to 252")
      ->check(scale)
      ->capture_default_str();
  spread->add_option("--lightness", options.lightness, "0 to 252")
      ->check(scale)
      ->capture_default_str();
  spread->footer("Example: quillaven colors spread 6 --lightness 100");
  spread->callback([&options] { SpreadColors(options); });
  CLI::App *brighten = group->add_subcommand("brighten", "Print a colour made brighter or darker");
  brighten->add_option("color", options.channels, "Red, green and blue")
      ->required()
      ->expected(3)
      ->check(CLI::Range(0, 255));
  brighten->add_option("--factor", options.factor, "Above 0.6 brightens, below darkens")
      ->required();
  brighten->footer("Example: quillaven colors brighten 200 30 30 --factor 0.8");
  brighten->callback([&options] { BrightenColor(options); });
}

void AddDemo(CLI::App &program, DemoOptions &options) {
  CLI::App *command =
      program.add_subcommand("demo", "Show the library on the land use of a country");
  command->add_option("--out", options.out, "Folder for the files that are written")
      ->capture_default_str();
  command
      ->add_option("--seed", options.seed, "Chance of the growth: the same number, the same years")
      ->capture_default_str();
  command->footer("Example: quillaven demo --out pictures");
  command->callback([&options] { Demo(options); });
}

CLI::App *AddNetworkCommand(CLI::App &group, char const *name, char const *what,
                            NetworkOptions &options, void (*run)(NetworkOptions const &)) {
  CLI::App *command = group.add_subcommand(name, what);
  command->callback([&options, run] { run(options); });
  return command;
}

void AddNetwork(CLI::App &program, NetworkOptions &options) {
  CLI::App *group = program.add_subcommand("network", "Work on transport networks");
  group->require_subcommand(1);
  group->footer("Example: quillaven network import --type 1 roads.txt --out roads.bin");
  CLI::Range const types(0, 255);

  CLI::App *command =
      AddNetworkCommand(*group, "import", "Make a network of vector text, one link type at a time",
                        options, ImportNetwork);
  command->add_option("files", options.texts, "Vector text to read")->required();
  command->add_option("--type", options.type, "Type of the links")->required()->check(types);
  command->add_option("--add-to", options.network, "A network that the links are added to");
  command->add_option("--out", options.out, "The network file to write")->required();
  command->footer(
      "Example: quillaven network import --type 3 rails.txt --add-to roads.bin --out all.bin");

  command = AddNetworkCommand(*group, "export", "Write the links of one type as vector text",
                              options, ExportNetwork);
  command->add_option("network", options.network, "The network file to read")->required();
  command->add_option("--type", options.type, "Type of the links")->required()->check(types);
  command->add_option("--out", options.out, "The vector text to write")->required();
  command->footer("Example: quillaven network export all.bin --type 3 --out rails.txt");

  command = AddNetworkCommand(*group, "report", "Tell how a network is used, and one-way links",
                              options, ReportNetwork);
  command->add_option("network", options.network, "The network file to read")->required();
  command->add_option("--out", options.out, "The file to write (default: standard output)");
  command->footer("Example: quillaven network report all.bin");

  command =
      AddNetworkCommand(*group, "years", "Replay the years of a network", options, ReplayYears);
  command->add_option("definitions", options.definitions, "The definitions file")->required();
  command->add_option("--year", options.year, "One year (default: each year of the file)");
  command->footer("Example: quillaven network years network-years.txt --year 1995");

  command = AddNetworkCommand(*group, "nearest", "Find the node and link nearest to a position",
                              options, FindNearest);
  command->add_option("network", options.network, "The network file to read")->required();
  command->add_option("x", options.x, "Whole coordinates")->required();
  command->add_option("y", options.y, "Whole coordinates")->required();
  command->footer("Example: quillaven network nearest all.bin 540000 5222000");

  command = AddNetworkCommand(*group, "check", "Look for faults in a network file", options,
                              CheckNetwork);
  command->add_option("network", options.network, "The network file to look at")->required();
  command->footer("Example: quillaven network check all.bin");
}

CLI::App *AddTableCommand(CLI::App &tables, TableOptions &options, char const *name,
                          char const *what, void (*run)(TableOptions const &)) {
  CLI::App *command = tables.add_subcommand(name, what);
  command->add_option("file", options.file, "The file of tables to read")->required();
  command->add_option("--table,--number", options.table, "Which table of the file, from 1")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command->callback([&options, run] { run(options); });
  return command;
}

void AddTable(CLI::App &program, TableOptions &options) {
  CLI::App *tables =
      program.add_subcommand("table", "Evaluate, draw, convert and edit function tables");
  tables->require_subcommand(1);
  tables->footer("Example: quillaven table plot demand.txt --out demand.svg");
  CLI::App *eval =
      AddTableCommand(*tables, options, "eval", "Print the value at each x", TableEval);
  eval->add_option("x", options.questions, "Where to evaluate")->required();
  eval->footer("Example: quillaven table eval distance-decay.txt 0.5 2 7.5");
  CLI::App *plot =
      AddTableCommand(*tables, options, "plot", "Draw points, curve and axes", TablePlot);
  plot->add_option("--out", options.out, "The picture to write: .svg, .bmp or .png")->required();
  plot->footer("Example: quillaven table plot demand.txt --out demand.svg");
  CLI::App *convert = AddTableCommand(*tables, options, "convert",
                                      "Write a table in tagged or compact form", TableConvert);
  convert->add_option("--to", options.form, "tagged or compact")
      ->required()
      ->check(CLI::IsMember({"tagged", "compact"}));
  convert->add_option("--out", options.out, "The file to write")->required();
  convert->footer("Example: quillaven table convert step.txt --to tagged --out step-tagged.txt");
  CLI::App *edit = AddTableCommand(*tables, options, "edit",
                                   "Shape a table with the mouse; the old file is kept", TableEdit);
  edit->footer("Example: quillaven table edit demand.txt --table 1");
}

// Every failure is one line and a status; help and version end well.
int Fail(std::string const &why, int status) {
  std::fprintf(stderr, "quillaven: %s\n", OneLine(why).c_str());
  return status;
}

// The innermost command that was named, as it is typed.
std::string CommandOf(CLI::App const &program) {
  std::string typed = program.get_name();
  CLI::App const *command = &program;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().back();
    typed += " " + command->get_name();
  }
  return typed;
}

int Run(int argc, char **argv) {
  DrawOptions draw;
  DemoOptions demo;
  ConvertOptions convert;
  ColorOptions colors;
  NetworkOptions network;
  TableOptions table;
  std::string file;
  CLI::App program(
      "Rasters at two scales, legends and pictures, transport networks and function tables",
      "quillaven");
  program.set_version_flag("--version", QUILLAVEN_VERSION);
  program.require_subcommand(0, 1);            // none is told below, in words of our own
  program.allow_windows_style_options(false);  // a path may begin with a slash
  program.footer(
      "Status: 0 when all went well; 1 when a file or the machine failed the command, or a check "
      "found\n"
      "faults; 2 when the arguments are wrong. A failure is told in one line on standard error.\n\n"
      "Example: quillaven draw landuse.asc --legend Landuse --out landuse.png");
  AddDraw(program, draw);
  AddInfo(program, file);
  AddConvert(program, convert);
  AddColors(program, colors);
  AddDemo(program, demo);
  AddNetwork(program, network);
  AddTable(program, table);

  auto const failArguments = [&program](std::string const &why) {
    return Fail(why + " (" + CommandOf(program) + " --help tells more)", kBadArguments);
  };
  try {
    program.parse(argc, argv);
    if (program.get_subcommands().empty()) return failArguments("a command is required");
  } catch (CLI::ParseError const &e) {
    if (e.get_exit_code() == 0) return program.exit(e);
    return failArguments(e.what());
  } catch (BadArguments const &e) {
    return failArguments(e.what());
  } catch (std::bad_alloc const &) {
    return Fail("not enough memory", kCommandFailed);
  } catch (std::exception const &e) {
    return Fail(e.what(), kCommandFailed);
  } catch (std::string const &text) {
    return Fail(text, kCommandFailed);
  } catch (CException const &) {  // commands tell more where they can
    return Fail("a file could not be read or written", kCommandFailed);
  }
  return 0;
}

// What is printed waits in a buffer: a disk that is full may show at the end only.
int FinishOutput() {
  bool const flushed = std::fflush(stdout) == 0;
  if (flushed && std::ferror(stdout) == 0) return 0;
  return Fail("standard output could not be written whole", kCommandFailed);
}

}  // namespace

int main(int argc, char **argv) {  // NOLINT: what is thrown while options are set up ends it
  int const status = Run(argc, argv);
  return status == 0 ? FinishOutput() : status;
}
