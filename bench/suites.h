#pragma once

// Each suite registers its benchmarks.

namespace bench {

void addFiles();    ///< load, save, CSV export, and the memory that a table takes
void addSorting();  ///< table and view
void addSearch();   ///< query, cookies
void addDeletion(); ///< by runs, under views, with and without listeners; insertion
void addViews();    ///< display, copies, duplicates
void addAle();      ///< a log to CSV, beside Miller

} // namespace bench
