// A database account, and two things that tools do with one: run a script, and load a file of data.
//
//     TAOracleDatabase* const database = new TAOracleDatabase("scott", "tiger", "build");
//     if (database->SQL("schema.sql") != 0) TraceErr("the schema could not be made");
//     database->Release();
//
// For batch work through the command-line tools of the database, which are found along PATH; for queries that return
// results use a client library. Other kinds of databases derive from TADatabase.
//
// Security: command lines are built without quoting and go through the system's command interpreter, so account,
// password, connection and file names must come from a trusted source only. The password can be read in the machine's
// list of processes while a command runs. Both belong to this interface (SECURITY.md).
//
// Ownership: objects are created by new and released by Release (TARefCounter.h). Assigning one also takes the count.
// Errors: no exceptions. When memory runs out, texts are empty.
// Threads: nothing is locked; commands of several threads run at the same time.
#ifndef TADATABASE_H
#define TADATABASE_H

#include <cstddef>

#include "TAFileName.h"
#include "TARefCounter.h"
#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELString.h"

class ZEL_API TADatabase : public TARefCounter {
public:
    // `database` is the connect identifier, which stands behind "@".
    TADatabase(ZELString user, ZELString password, ZELString database) noexcept;
    TADatabase(const TADatabase& other) noexcept = default;
    TADatabase& operator=(const TADatabase& other) noexcept = default;
    ~TADatabase() override;

    // Loads the file `data` as the file `control` tells. Waits for the end; the result is the tool's.
    virtual int SQLLoader(TAFileName control, TAFileName data) = 0;
    // Runs a script file. Waits for the end; the result is the tool's.
    virtual int SQL(TAFileName script) = 0;

    // Empty, unless a derived class has something to say.
    ZELString GetErrMsg() const noexcept { return _errMsg; }

protected:
    ZELString _user;
    ZELString _password;
    ZELString _database;
    ZELString _reserved;  // empty; for derived classes
    ZELString _errMsg;
};

// Both operations give what system() of the C runtime gives, and print what the tool prints: on Windows the exit code
// of the command, on Linux a status as waitpid gives it, and a tool that is not there is a failure that the interpreter
// tells. Without a variable PATH both end the process with "TAOracleDatabase::SQLLoader, no PATH variable set".
class ZEL_API TAOracleDatabase : public TADatabase {
public:
    using TADatabase::TADatabase;
    TAOracleDatabase(const TAOracleDatabase& other) noexcept = default;
    TAOracleDatabase& operator=(const TAOracleDatabase& other) noexcept = default;
    ~TAOracleDatabase() override;

    // sqlldr80 userid=USER/PASSWORD@DATABASE control=CONTROL data=DATA
    int SQLLoader(TAFileName control, TAFileName data) override;
    // plus80 -s USER/PASSWORD@DATABASE @SCRIPT
    int SQL(TAFileName script) override;
};

#endif
