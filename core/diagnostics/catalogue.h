#pragma once

namespace pellux {

/// Reads a catalogue (docs/formats.md). The name is looked up in the current directory, then along
/// `PATH`; texts stay in the file until they are wanted. 0 only when the file is not found.
int Read_text_msgs(const char* file_name);

/// Finds the catalogue in "bin" of the directories that `VELMORA_DIR` names (cut at ';'), else
/// under its bare name, and reads it.
int read_installed_text_msgs();

/// Warns of every bound message that no catalogue provided.
void Check_text_msgs();

/// Forgets everything that catalogues said and closes the file. For tests.
void reset_text_msgs();

/// Reads the installed catalogue and routes the allocator's faults to the reporter. `program_name`
/// (null: none) is kept, not copied.
void start_diagnostics(const char* program_name);

} // namespace pellux
