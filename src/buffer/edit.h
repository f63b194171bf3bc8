#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Editing the sector buffer: in the text box, or byte by byte through questions.
struct Editor {
  std::vector<std::uint8_t> Edit_Buf;  // what the last parse of the edit view gave
  std::int64_t last_address = 0;       // in Sec_Buf, where the byte editor goes on
};

inline Editor editor;

/// Parses the text box into Edit_Buf. False when it is no edit view or there is no Sec_Buf; an error in it is told.
bool Get_text_to_Buffer();

/// Takes the edits from the edit view, if it is shown: lists the bytes changed, asks once, and copies them into
/// Sec_Buf. True when the buffer is to be written to the disk now, which is also the case with no view shown and with
/// nothing changed; the writing asks for itself. `place` returns the end of the question, what is written to, and is
/// called only once there is one to ask.
bool take_edits(std::string (*place)());

/// "Write 2 sectors starting at sector 40 from the buffer?", with the fields of the range as typed.
std::string write_buffer_title();

/// Changes single bytes of Sec_Buf's first 10,241 through questions, until one is cancelled, and shows the edit view.
void Edit_Buffer_Byte();
