#pragma once

namespace zelmor::domain::types {

// The file format of reports and exports. Four bits of a recording's report flags,
// so no number above 15.
enum FileFormat : int { PDF_FILE = 0, CSV_FILE = 1, XLSX_FILE = 2 };

} // namespace zelmor::domain::types
