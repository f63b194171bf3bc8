#pragma once

/// Runs the program from its command line to its end and gives the process's exit code. Ways to leave inside end the
/// process themselves.
int run_program();
