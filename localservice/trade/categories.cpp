// SPDX-License-Identifier: MIT

#include "categories.h"

#include <algorithm>
#include <iterator>

namespace {

struct Category
{
    int id;
    int parent;
    const char *name;
};

const Category categories[] = {
    {1, 0, "Public Figures"}, {2, 0, "Breaking News"},   {3, 0, "Event"},
    {4, 0, "Sports"},         {5, 0, "Funny"},           {6, 0, "Places"},
    {7, 0, "Party"},          {10, 1, "Actors"},         {11, 1, "Musicians"},
    {12, 1, "Politicians"},   {13, 1, "Athletes"},       {20, 2, "Accidents"},
    {21, 2, "Politics"},      {22, 2, "Weather"},        {220, 22, "Storms"},
    {221, 22, "Floods"},      {222, 22, "Snow and Ice"}, {30, 3, "Concerts"},
    {31, 3, "Festivals"},     {32, 3, "Exhibitions"},    {33, 3, "Parades"},
    {40, 4, "Football"},      {41, 4, "Motor Sports"},   {42, 4, "Water Sports"},
    {43, 4, "Winter Sports"}, {400, 40, "Matches"},      {401, 40, "Fans"},
    {402, 40, "Stadiums"},    {430, 43, "Skiing"},       {431, 43, "Ice Hockey"},
    {50, 5, "Animals"},       {51, 5, "Children"},       {52, 5, "Signs"},
    {60, 6, "Cities"},        {61, 6, "Nature"},         {62, 6, "Monuments"},
    {600, 60, "By Day"},      {601, 60, "By Night"},     {610, 61, "Mountains"},
    {611, 61, "Seaside"},     {612, 61, "Forests"},      {70, 7, "Birthdays"},
    {71, 7, "Weddings"},      {72, 7, "Night Clubs"},
};

const Category *find(qint64 id)
{
    const auto found = std::find_if(std::begin(categories), std::end(categories),
                                    [id](const Category &category) { return category.id == id; });
    return found == std::end(categories) ? nullptr : found;
}

} // namespace

bool isCategory(qint64 id)
{
    return find(id) != nullptr;
}

QString categoryPath(qint64 id)
{
    QString path;
    for (const Category *level = find(id); level; level = find(level->parent)) {
        const QString name = QLatin1String(level->name);
        path = path.isEmpty() ? name : name + QStringLiteral(" > ") + path;
    }
    return path;
}

QList<qint64> categoryWithAllBelow(qint64 id)
{
    QList<qint64> found{id};
    for (qsizetype i = 0; i < found.size(); ++i) {
        for (const Category &category : categories) {
            if (category.parent == found.at(i))
                found.append(category.id);
        }
    }
    return found;
}

QList<qint64> topCategories()
{
    QList<qint64> found;
    for (const Category &category : categories) {
        if (category.parent == 0)
            found.append(category.id);
    }
    return found;
}

QByteArray categoryList()
{
    QByteArray list = "CategoryID,Name,ParentID\n";
    for (const Category &category : categories) {
        list += QByteArray::number(category.id) + ',' + category.name + ','
            + QByteArray::number(category.parent) + '\n';
    }
    return list;
}
