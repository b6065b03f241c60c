// `objects_probe VERB`: does what ends a process.
#include <cstdio>
#include <string_view>

#include "TADatabase.h"
#include "TAEnvironment.h"
#include "TAPObject.h"

namespace {

// Three names.
TAPPath* MakePath() {
    TAPName* const name = new TAPName("name");
    TAPPath* path = nullptr;
    for (int length = 1; length <= 3; ++length) path = path != nullptr ? new TAPPath(path, name) : new TAPPath(name);
    return path;
}

// `database FOLDER SCRIPT` or `database FOLDER CONTROL DATA`, with all that the system looks for in that folder.
int RunDatabase(int count, char** arguments) {
    for (const char* variable : {"PATH", "TMP", "TMPDIR"})
        TAEnvVariable(variable, 1000).PutEnvironmentValue(arguments[2]);
    TAOracleDatabase original("user", "password", "base");
    TAOracleDatabase database(original);
    database = original;
    const int status = count > 4 ? database.SQLLoader(arguments[3], arguments[4]) : database.SQL(arguments[3]);
    std::printf("status %d, message [%s]\n", status, database.GetErrMsg().CastToCharPtr());
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view verb = count > 1 ? arguments[1] : "";
    if (verb == "database") return RunDatabase(count, arguments);
    TAPObject* const object = new TAPObject;
    object->SetAttribute("text", "text");
    object->SetAttribute("number", 1);
    TAPAttr null;
    if (verb == "GetInteger") null.GetInteger();
    if (verb == "GetString") null.GetString();
    if (verb == "GetFileName") null.GetFileName();
    if (verb == "GetObject") null.GetObjectW();
    if (verb == "GetPath") null.GetPath();
    if (verb == "GetList") null.GetList();
    if (verb == "index 0") (*MakePath())[0];
    if (verb == "index 4") (*MakePath())[4];
    if (verb == "append") object->AppendToAttribute("text", 1);
    if (verb == "add") object->AppendToAttribute("number", "1");
    if (verb == "delete") {
        object->AddRef();
        const TAPObject copy(*object);  // has two references as well, so it must not end
    }
    TAEnvVariable("PATH", 1).UnsetEnvironmentValue();
    if (verb == "SQL") TAOracleDatabase("user", "password", "base").SQL("script");
    if (verb == "SQLLoader") TAOracleDatabase("user", "password", "base").SQLLoader("control", "data");
    return 0;
}
