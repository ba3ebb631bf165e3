#pragma once

// Takes compiled resources away for a while. For programs of one source file: it defines a function of Qt's.

#include <QFile>
#include <QString>

#include <algorithm>
#include <dlfcn.h>
#include <vector>

namespace resource {

/// One collection of compiled resources.
struct Collection
{
    int version;
    const unsigned char* tree;
    const unsigned char* names;
    const unsigned char* data;
};

/// All that were registered, from before `main` on.
inline std::vector<Collection>& Collections()
{
    static std::vector<Collection> all;
    return all;
}

} // namespace resource

Q_CORE_EXPORT bool qRegisterResourceData(
    int version, const unsigned char* tree, const unsigned char* names, const unsigned char* data);
Q_CORE_EXPORT bool qUnregisterResourceData(
    int version, const unsigned char* tree, const unsigned char* names, const unsigned char* data);

/// Takes the place of Qt's function: the libraries register through it.
bool qRegisterResourceData(
    int version, const unsigned char* tree, const unsigned char* names, const unsigned char* data)
{
    using Function = bool (*)(int, const unsigned char*, const unsigned char*, const unsigned char*);
    static const auto next
        = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_Z21qRegisterResourceDataiPKhS0_S0_"));
    if (!next)
        return false;
    resource::Collections().push_back({version, tree, names, data});
    return next(version, tree, names, data);
}

namespace resource {

/// Takes away the collection that \p path is in, with all else in it, until it is destroyed.
class Without
{
public:
    explicit Without(const QString& path)
    {
        const std::vector<Collection> all = Collections();
        for (const Collection& c : all) {
            if (!QFile::exists(path))
                break;
            qUnregisterResourceData(c.version, c.tree, c.names, c.data);
            if (QFile::exists(path)) {
                Register(c);
                Collections().pop_back();
            } else {
                m_taken = c;
                // Another that looks for something must not put it back.
                std::vector<Collection>& known = Collections();
                known.erase(std::remove_if(known.begin(), known.end(),
                                [&c](const Collection& other) { return other.tree == c.tree; }),
                    known.end());
            }
        }
    }

    ~Without()
    {
        if (m_taken.tree)
            Register(m_taken);
    }

    Without(const Without&) = delete;
    Without& operator=(const Without&) = delete;

    bool IsDone() const { return m_taken.tree != nullptr; }

private:
    static void Register(const Collection& c) { qRegisterResourceData(c.version, c.tree, c.names, c.data); }

    Collection m_taken{};
};

} // namespace resource
