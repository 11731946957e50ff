// The command line of an application, without the program name.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QList>
#include <QtCore/QString>

class BAPP_ArgumentIterator;

/// A shared, copy-on-write list of arguments (UTF-8 decoded). Reading past the
/// end gives a null string rather than failing, so option parsers can look
/// ahead without checking the size first.
class BRINDLE_EXPORT BAPP_Arguments
{
public:
    BAPP_Arguments() = default;
    /// The given arguments.
    BAPP_Arguments(QList<QString> const& arguments)
        : m_list(arguments)
    {}

    /// Number of arguments.
    qsizetype count() const { return m_list.size(); }
    /// Number of arguments.
    qsizetype size() const { return m_list.size(); }

    /// A copy of the argument, or a null string when index is out of range.
    QString at(qsizetype index) const;
    /// Same as at().
    QString operator[](qsizetype index) const { return at(index); }

    /// Removes one argument; an index out of range is ignored.
    void erase(qsizetype index);

    /// An iterator on the first argument.
    BAPP_ArgumentIterator begin();
    /// An iterator past the last argument.
    BAPP_ArgumentIterator end();

    /// The arguments.
    QList<QString> const& list() const { return m_list; }

private:
    friend class BAPP_ArgumentIterator;
    QList<QString> m_list;
};

/// A position in a BAPP_Arguments list. Used to walk options and consume them:
///
/// @code
/// for (auto it = args.begin(); it.hasMoreArgument(1);) {
///     if (*it == u"-size" && it.hasMoreArgument(2)) { size = it[1]; it.handled(2); }
///     else ++it;
/// }
/// @endcode
///
/// Reading past the end gives a null string; the iterator is not checked
/// against its list (an index outside it is simply past the end).
class BRINDLE_EXPORT BAPP_ArgumentIterator
{
public:
    /// Stands on argument `index` of `arguments`.
    BAPP_ArgumentIterator(BAPP_Arguments* arguments, qint64 index)
        : m_arguments(arguments)
        , m_index(index)
    {}

    /// The argument at the iterator (a null string past the end).
    QString const& operator*() const;
    /// Address of the argument at the iterator.
    QString const* operator->() const { return &**this; }
    /// The argument k places further on.
    QString operator[](qint64 k) const;

    /// Moves to the next argument.
    BAPP_ArgumentIterator& operator++()
    {
        ++m_index;
        return *this;
    }
    /// Moves to the previous argument.
    BAPP_ArgumentIterator& operator--()
    {
        --m_index;
        return *this;
    }

    /// True when index + n is at most the size: hasMoreArgument(1) asks whether
    /// the iterator stands on an argument, hasMoreArgument(2) whether an option
    /// there has its value.
    bool hasMoreArgument(qint64 n) const;
    /// Removes n arguments from the current one on (fewer when the end comes
    /// first). The iterator keeps its index, so it then stands on the argument
    /// that followed the removed ones.
    void handled(qint64 n);

    /// The position in the list.
    qint64 index() const { return m_index; }
    /// The list walked.
    BAPP_Arguments* arguments() const { return m_arguments; }

    /// Same list and position.
    bool operator==(BAPP_ArgumentIterator const& other) const
    {
        return m_arguments == other.m_arguments && m_index == other.m_index;
    }
    /// Different list or position.
    bool operator!=(BAPP_ArgumentIterator const& other) const { return !(*this == other); }

private:
    BAPP_Arguments* m_arguments;
    qint64 m_index;
};
