// Command lines as text, run by the C runtime's system(). Nothing is quoted: that is the interface, and SECURITY.md
// tells what it means for callers. File names are written as the system's own tools take them.

#include "TADatabase.h"

#include <cstdlib>
#include <utility>

#include "TADiagnostics.h"

namespace {

void RequirePath() {
    FATAL(std::getenv("PATH") == nullptr, "TAOracleDatabase::SQLLoader, no PATH variable set");
}

// A command that memory cut off would do something else.
int Execute(const ZELString& command) noexcept {
    return command.IsIncomplete() ? -1 : std::system(command);
}

}  // namespace

TADatabase::TADatabase(ZELString user, ZELString password, ZELString database) noexcept
    : _user(std::move(user)), _password(std::move(password)), _database(std::move(database)) {}

TADatabase::~TADatabase() = default;

TAOracleDatabase::~TAOracleDatabase() = default;

int TAOracleDatabase::SQL(TAFileName script) {
    RequirePath();
    // A scratch file exists while the command runs; the command does not use it.
    const TAFileName scratch = TAFileName::GetTemporaryFileName();
    const int status =
        Execute("plus80 -s " + _user + "/" + _password + "@" + _database + " @" + script.GetNativeName());
    scratch.Delete();
    return status;
}

int TAOracleDatabase::SQLLoader(TAFileName control, TAFileName data) {
    RequirePath();
    return Execute("sqlldr80 userid=" + _user + "/" + _password + "@" + _database +
                   " control=" + control.GetNativeName() + " data=" + data.GetNativeName());
}
