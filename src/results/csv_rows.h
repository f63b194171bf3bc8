#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "measure/transfer_record.h"
#include "results/output_file.h"

/// The CSV file (RFC 4180, lines end in CR LF): the names of the columns, then a row a transfer, written while the run
/// goes on from a buffer of fixed size.

/// seconds,operation,lba,sectors,milliseconds,mb_per_s,error,beyond_ms
std::string_view csv_header();

struct CsvRows {
  std::string name;  // empty: no rows are wanted
  OutputFile file;
  bool failed = false;  // told; nothing more is written
  std::array<char, 65536> buffer{};
  std::size_t used = 0;
};

inline CsvRows csv_rows;

/// Rows go to file `name` from here on. The file is made when the buffer is full for the first time, or at the end.
void begin_csv(const std::string& name);

/// Adds a row. A failure is told once; the run goes on without rows.
void add_csv_row(const Transfer& transfer);

/// Writes what is left and gives the file its name. An empty text, or one line that says what failed.
std::string finish_csv();

void abandon_csv();
