#include "categories.h"

#include <algorithm>
#include <iterator>

namespace {

struct Category
{
    int id;
    const char *name;
    int parent;
};

const Category categories[] = {
    {1, "Public Figures", 0}, {2, "Breaking News", 0},   {3, "Event", 0},
    {4, "Sports", 0},         {5, "Funny", 0},           {6, "Places", 0},
    {7, "Party", 0},          {10, "Actors", 1},         {11, "Musicians", 1},
    {12, "Politicians", 1},   {13, "Athletes", 1},       {20, "Accidents", 2},
    {21, "Politics", 2},      {22, "Weather", 2},        {220, "Storms", 22},
    {221, "Floods", 22},      {222, "Snow and Ice", 22}, {30, "Concerts", 3},
    {31, "Festivals", 3},     {32, "Exhibitions", 3},    {33, "Parades", 3},
    {40, "Football", 4},      {41, "Motor Sports", 4},   {42, "Water Sports", 4},
    {43, "Winter Sports", 4}, {400, "Matches", 40},      {401, "Fans", 40},
    {402, "Stadiums", 40},    {430, "Skiing", 43},       {431, "Ice Hockey", 43},
    {50, "Animals", 5},       {51, "Children", 5},       {52, "Signs", 5},
    {60, "Cities", 6},        {61, "Nature", 6},         {62, "Monuments", 6},
    {600, "By Day", 60},      {601, "By Night", 60},     {610, "Mountains", 61},
    {611, "Seaside", 61},     {612, "Forests", 61},      {70, "Birthdays", 7},
    {71, "Weddings", 7},      {72, "Night Clubs", 7},
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

QByteArray categoryList()
{
    QByteArray list = "CategoryID,Name,ParentID\n";
    for (const Category &category : categories) {
        list += QByteArray::number(category.id) + ',' + category.name + ','
            + QByteArray::number(category.parent) + '\n';
    }
    return list;
}
