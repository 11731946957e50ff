#include <BrindleBaseCore/app/BAPP_Arguments.h>

QString BAPP_Arguments::at(qsizetype index) const
{
    if (index < 0 || index >= m_list.size())
        return QString();
    return m_list.at(index);
}

void BAPP_Arguments::erase(qsizetype index)
{
    if (index >= 0 && index < m_list.size())
        m_list.removeAt(index);
}

BAPP_ArgumentIterator BAPP_Arguments::begin()
{
    return BAPP_ArgumentIterator(this, 0);
}

BAPP_ArgumentIterator BAPP_Arguments::end()
{
    return BAPP_ArgumentIterator(this, m_list.size());
}

QString const& BAPP_ArgumentIterator::operator*() const
{
    static QString const nullString;
    QList<QString> const& list = m_arguments->m_list;
    if (m_index < 0 || m_index >= list.size())
        return nullString;
    return list.at(m_index);
}

QString BAPP_ArgumentIterator::operator[](qint64 k) const
{
    return m_arguments->at(m_index + k);
}

bool BAPP_ArgumentIterator::hasMoreArgument(qint64 n) const
{
    return m_index + n <= m_arguments->size();
}

void BAPP_ArgumentIterator::handled(qint64 n)
{
    for (qint64 i = 0; i < n && m_index < m_arguments->size(); ++i)
        m_arguments->erase(m_index);
}
