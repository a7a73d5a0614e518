#pragma once

#include "core/devices/catalogue_file.h"

namespace pellux {

// The device catalogue "devices.dat" for those who cannot do without it. A fault ends the program
// with one message of the reporter; an operation that is called `quiet` answers false instead.

/// The one reader of the program.
[[nodiscard]] CatalogueReader& catalogue_reader();

/// Opens "devices.dat" of the installation (`find_installed_file`); one that is open stays as it
/// is.
bool open(CatalogueReader& reader, bool quiet);
/// Opens a section, in place of every range that is open.
bool seekSection(CatalogueReader& reader, std::string_view name, bool quiet);
/// Opens a block within the innermost range, or a section when there is none. The first block whose
/// name begins with `name` is taken.
bool enterBlock(CatalogueReader& reader, std::string_view name, bool quiet);
/// Closes the innermost range; reading goes on where it stands.
bool leaveBlock(CatalogueReader& reader, bool quiet);
[[nodiscard]] bool atEnd(CatalogueReader& reader);
/// The next line of the innermost range, false at its end. Unless `raw`, without the blanks around
/// it (`trim_blanks`).
[[nodiscard]] bool readLine(CatalogueReader& reader, CatalogueLine& buffer, bool raw);
/// The next name in the index that begins with c in either case: a device family's. False after
/// the last one, and then the first again.
[[nodiscard]] bool nextIndexName(CatalogueReader& reader, CatalogueLine& buffer, bool raw);

} // namespace pellux
