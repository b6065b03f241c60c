// Dates in four fixed layouts, facts about the machine and the process, and one environment variable as an object.
//
//     puts(GetSortDate());                                // "2024-03-05-07-08-09"
//     TAEnvVariable jobs("BUILD_JOBS", 16);
//     if (jobs.PutEnvironmentValue("4") == 0) launch();   // children see BUILD_JOBS=4
//
// The functions may be called from every thread, except that changing the environment or the working directory while
// other threads use it is the caller's to prevent. Nothing throws.
#ifndef TAENVIRONMENT_H
#define TAENVIRONMENT_H

#include "ZELExport.h"
#include "ZELHeapObject.h"
#include "ZELPlatformTypes.h"
#include "ZELString.h"

// Local date and time of now; each call reads the clock once. Empty when the system cannot convert the time.
// GetDate: 24 characters, "Tue Mar  5 07:08:09 2024". It is the C runtime's own text: the day of the month is padded
// with a blank on Linux and with a zero on Windows.
ZEL_API ZELString GetDate() noexcept;
// GetDay: dd/mm/yyyy. GetShortDate: mm-dd.hh:mm. GetSortDate: yyyy-mm-dd-hh-mm-ss, which sorts in time order.
// A year beyond 9999 is written with all its digits.
ZEL_API ZELString GetDay() noexcept;
ZEL_API ZELString GetShortDate() noexcept;
ZEL_API ZELString GetSortDate() noexcept;

// The host name; empty when the system gives none of at most 255 bytes.
ZEL_API ZELString GetHostName() noexcept;

// The working directory as a path value, with backslashes on both targets ("\work\tools" on Linux); "." when it cannot
// be read or has more than 2047 bytes.
ZEL_API ZELString GetWorkDir() noexcept;
// 0 on success, -1 on failure. Takes what GetWorkDir gave, and any other path.
ZEL_API int SetWorkDir(ZELString dir) noexcept;

// Fills `info`, its size field included. 1 on success; otherwise prints "   ERROR GetOSVersionInfo: Unable to get
// version" on standard output and returns 0. On Linux, major, minor and build are the first three numbers of the
// kernel's release ("6.1.38-13" gives 6, 1, 38), and every other field is 0.
ZEL_API int GetOSVersionInfo(OSVERSIONINFOEXW& info) noexcept;

// At least 1.
ZEL_API int GetProcessorsNumber() noexcept;

// 1 when the calling thread acts as a member of the Administrators group (Linux: as user 0), else 0.
ZEL_API int IsUserAdmin() noexcept;

// Always "C:\temp", whatever the environment says, so that all tools of a machine meet there.
ZEL_API ZELString TAGetTempDir() noexcept;

// One variable of this process's environment, set through a buffer of fixed capacity. A variable that was set stays set
// when the object is gone.
class ZEL_API TAEnvVariable : public ZELHeapObject {
public:
    // Copies `name`; null and empty stand for no name. `capacity` is the room for a value and its terminator, in bytes;
    // with 0 or less there is no buffer and no value fits. A name with "=" in it sets the variable named before the
    // first one, to a value that begins with the rest.
    TAEnvVariable(const char* name, int capacity) noexcept;
    // The copy of a name, and of the text last put; capacity becomes that text's length + 1. When nothing was put, the
    // copy has no buffer: assignment keeps the capacity of its left side, a new object has capacity 0.
    TAEnvVariable(const TAEnvVariable& other) noexcept;
    TAEnvVariable& operator=(const TAEnvVariable& other) noexcept;
    virtual ~TAEnvVariable();

    // Sets the variable; an empty value removes it. 0 on success, and also, nothing done, without a name or a value.
    // A value whose length alone reaches the capacity is refused with 1 and two warning lines on standard output, as is
    // one that the system does not take, and one of a name that found no memory, with 1 alone. `value` may be what
    // Value() or GetEnvironmentValue() gave.
    int PutEnvironmentValue(const char* value) const noexcept;
    // Removes the variable by putting the empty value, with its results; 0 when there is no name or nothing to remove.
    int UnsetEnvironmentValue() const noexcept;

    // The variable's value in the environment, valid until it changes; null when it is not set, "" without a name.
    const char* GetEnvironmentValue() noexcept;

    // Null when there is no name.
    const char* Name() const noexcept { return _name; }
    // The text "name=value" that was put last, "" before that, null without a buffer.
    const char* Value() const noexcept { return _buffer; }

private:
    void copy(const TAEnvVariable& other) noexcept;
    void Lose() noexcept;

    char* _name;
    char* _buffer;  // room for the name, "=" and _capacity bytes
    int _capacity;
    bool _isLost = false;  // the name found no memory
};

#endif
