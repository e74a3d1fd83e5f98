// The message types of tables and views.

#include "ole/oledb/messageTypes.h"

#include "tarn/NotifyMsgTypeDictionary.h"

int recordsDeletedType() {
    static const int type = NotifyMsgTypeDictionary::intern("recordsDeleted");
    return type;
}

int recordsChangedType() {
    static const int type = NotifyMsgTypeDictionary::intern("recordsChanged");
    return type;
}
