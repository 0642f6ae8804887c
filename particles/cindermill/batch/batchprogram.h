#pragma once

// The tool without its windows: one command for each run. It holds no logic of its own, only what turns a
// command line into calls and their results into text. docs/batch.md lists the commands.
//
// Results go to the standard output, messages to the standard error. The exit status is 0 when done with
// nothing to report, 1 when errors were reported, 2 when the command line is wrong.
int RunBatchProgram(int argc, char** argv);
