#include "support/record.h"

#include "TAFileName.h"
#include "TAPerfo.h"

Record::Record(const ZELString& file) : _isWanted(file.Length() > 0) {
    if (_isWanted) _isWhole = _stream.open(TAFileName(file).GetNativeName(), "w") == 0;
}

void Record::Add(std::initializer_list<std::string_view> fields) {
    if (!_isWanted || !_isWhole) return;
    ZELString line;
    for (const std::string_view field : fields) {
        if (line.Length() > 0) line += '\t';
        for (const char character : field) line += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
    }
    line += '\n';
    _isWhole = !line.IsIncomplete() && _stream.write(line, line.View().size()) == 0;
}

void Record::AddCounters() {
    ZELListValZELString reports;
    TAPerfo::GlobalReport(reports);
    for (const ZELString& report : reports) Add({"counter", report.View()});
}

bool Record::Finish() {
    if (_isWanted && _stream.close() != 0) _isWhole = false;
    return _isWhole;
}
