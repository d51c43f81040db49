// SPDX-License-Identifier: MIT

// Stands in for the GConf library, under its name and with the few functions that the client looks
// up in it. It answers from a file of lines "key<TAB>type<TAB>value" that KAVLOR_STANDIN_GCONF
// names and reads it anew for each question; without that variable there is no GConf to be had.
// StandInGConf writes the file.

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

struct GError;

struct GSList
{
    void *data;
    GSList *next;
};

// As in GConf, the type comes first; the numbers of the types are GConf's.
struct GConfValue
{
    int type;
    std::string text;
    GConfValue *firstElement;
    GSList list;
};

struct GConfClient
{
};

namespace {

int typeNumber(const std::string &name)
{
    const char *const names[] = {"", "string", "int", "float", "bool", "schema", "list", "pair"};
    for (int number = 1; number < 8; ++number) {
        if (name == names[number])
            return number;
    }
    return 0;
}

GConfValue *makeValue(const std::string &type, const std::string &text)
{
    auto *value = new GConfValue{typeNumber(type), text, nullptr, {nullptr, nullptr}};
    if (type == "list" && !text.empty()) {
        value->firstElement = makeValue("string", text.substr(0, text.find(',')));
        value->list.data = value->firstElement;
    }
    return value;
}

GConfValue *find(const char *key)
{
    std::ifstream file(std::getenv("KAVLOR_STANDIN_GCONF"));
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string name;
        std::string type;
        std::string text;
        std::getline(fields, name, '\t');
        std::getline(fields, type, '\t');
        std::getline(fields, text);
        if (name == key)
            return makeValue(type, text);
    }
    return nullptr;
}

std::string textOf(const char *key)
{
    GConfValue *value = find(key);
    const std::string text = value ? value->text : std::string();
    if (value)
        delete value->firstElement;
    delete value;
    return text;
}

} // namespace

extern "C" {

GConfClient *gconf_client_get_default()
{
    static GConfClient client;
    return std::getenv("KAVLOR_STANDIN_GCONF") ? &client : nullptr;
}

GConfValue *gconf_client_get(GConfClient *, const char *key, GError **)
{
    return find(key);
}

char *gconf_client_get_string(GConfClient *, const char *key, GError **)
{
    return strdup(textOf(key).c_str());
}

int gconf_client_get_int(GConfClient *, const char *key, GError **)
{
    return std::atoi(textOf(key).c_str());
}

int gconf_client_get_bool(GConfClient *, const char *key, GError **)
{
    return textOf(key) == "true";
}

GSList *gconf_value_get_list(const GConfValue *value)
{
    return value->firstElement ? const_cast<GSList *>(&value->list) : nullptr;
}

char *gconf_value_to_string(const GConfValue *value)
{
    return strdup(value->text.c_str());
}

void gconf_value_free(GConfValue *value)
{
    delete value->firstElement;
    delete value;
}

void g_error_free(GError *) { }

void g_free(void *memory)
{
    std::free(memory);
}

void g_object_unref(void *) { }

} // extern "C"
