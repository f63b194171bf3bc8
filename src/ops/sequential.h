#pragma once

/// Reads the range in the fields from the selected drive, chunk by chunk, and reports it.
void Seq_Read();

/// Writes the range in the fields from the start of Sec_Buf, chunk by chunk, and reports it.
void Seq_Write();

/// The sequential read in its frame.
void read_command();

/// Fills the buffer with the pattern and, once confirmed, writes it over the range.
void write_command();

/// Takes the edits of the edit view, if it is shown, and writes the buffer over the range.
void write_buffer_command();

/// Writes the buffer over what the fields say, not over what was viewed, once confirmed; the question shows both fields
/// as typed.
void Write_Buffer_To_End();
