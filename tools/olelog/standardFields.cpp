// The columns that editors know by name. Their order is the order in which people see them.

#include "standardFields.h"

#include "ole/oledb/oledb.h"

std::vector<DBFieldDesc> standardFields() {
    using enum DBFieldTypes::eType;
    return {
        {"Cookie", TEXT},
        {"Type", TEXT},
        {"Flags", LONG},
        {"Name", TEXT},
        {"Date", DATE},
        {"Size", LONG},
        {"pic qual", TEXT},
        {"aud qual", TEXT},
        {"chans", TEXT},
        {"Start time", TIMECODE},
        {"End time", TIMECODE},
        {"Duration", TIMECODE},
        {"Reel", TEXT},
        {"Reel Type", TEXT},
        {"Scene", TEXT},
        {"Shot", TEXT},
        {"Who", TEXT},
        {"Description", TEXT},
        {"Notes", TEXT},
        {"snd start", TIMECODE},
        {"snd end", TIMECODE},
        {"snd reel", TEXT},
        {"start 24P code", TIMECODE},
        {"end 24P code", TIMECODE},
        {"24P reel", TEXT},
        {"film_origin", TEXT},
        {"pulldown", TEXT},
        {"sequence", LONG},
        {"start keycode", TIMECODE},
        {"end keycode", TIMECODE},
        {"film duration", TEXT},
        {"start camcode", TIMECODE},
        {"end camcode", TIMECODE},
        {"cam reel", TEXT},
        {"comp reel", TEXT},
        {"cam_date", DATE},
        {"start inkcode", TIMECODE},
        {"end inkcode", TIMECODE},
        {"lab reel", TEXT},
        {"Mdrive", TEXT},
        {"Tag", LONG},
        {"film label_std", TEXT},
        {"start perf", TEXT},
        {"orig soundfile", TEXT},
    };
}

std::unique_ptr<oledb> tableWith(std::vector<DBFieldDesc> fields) {
    fields.emplace_back(); // ends the list
    return std::make_unique<oledb>(fields.data());
}
