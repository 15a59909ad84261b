// The factory singleton's one instantiation in the tool.
#include "FetchObject.h"

template class ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;
