// The compiled form as text, to find a fault in a filter.
#ifndef FILTERS_FILTER_DUMP_H
#define FILTERS_FILTER_DUMP_H

namespace zel {

class FilterProgram;

// Writes the program to standard output and flushes it. Of a rejected filter the lexemes before the fault.
void DumpProgram(const FilterProgram& program) noexcept;

}  // namespace zel

#endif
