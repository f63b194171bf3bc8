#pragma once

/// Every module's state, as a new process finds it. A module that keeps something between two calls has its line in
/// state.cpp; tools/check-state finds one that has none.

/// The program's own state: what a second start in the same process needs.
void reset_program();

/// The program's, the attached virtual disks and the headless platform. Called before each test.
void reset_all();
