#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// Keeps a file what it is to be, in a thread of its own: disks may take long, and so may what is written to
/// be made.
///
/// \code
/// connect(&keeper, &ZrFileKeeper::Done, this, [](const QString& error) { Tell(error); });
/// keeper.Write([copy] { return copy.ToJson(); });
/// \endcode
///
/// Of orders that come while one is carried out only the latest is carried out after it. The file is replaced
/// in one step, see `zr::replace_file`; its folder is made where there is none.
///
/// Threads: all functions belong to the thread that the keeper lives in. The destructor carries out what is
/// left to be done and waits for it; no `Done` comes then.
class ZR_KIT_EXPORT ZrFileKeeper : public QObject
{
    Q_OBJECT

public:
    /// Makes what is written; called in the keeper's thread.
    using Content = std::function<QByteArray()>;

    /// What follows when the file was written; called in the keeper's thread.
    using Then = std::function<void()>;

    explicit ZrFileKeeper(const QString& path, QObject* parent = nullptr);
    ~ZrFileKeeper() override;

    QString Path() const { return m_path; }

    /// \p then, if there is one, is not called when the file cannot be written, nor when another order comes
    /// before this one is carried out.
    void Write(Content content, Then then = {});
    void Remove();

    void Finish(); ///< waits until all is done, and tells of it

    bool IsThere() const; ///< the file, or it will be

Q_SIGNALS:
    void Done(const QString& error); ///< the last order was carried out; empty when all went well

private:
    enum eOrder : int
    {
        none,
        write,
        removal
    };

    void Order(eOrder order, Content content, Then then);
    void Run();
    Q_INVOKABLE void Tell();

    const QString m_path;
    mutable std::mutex m_guard; ///< of all below
    std::condition_variable m_news;
    eOrder m_order = none; ///< that waits
    eOrder m_now = none; ///< that is carried out
    Content m_content;
    Then m_then;
    bool m_isEnding = false;
    bool m_isUntold = false;
    QString m_error;
    std::thread m_thread; ///< from the first order on
};
