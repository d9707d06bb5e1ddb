// Links the installed library and prints what an application would receive for a failure.
#include <iostream>

#include <kavo/push/common/push_error_message.h>
#include <kavo/push/common/push_logger.h>

int main()
{
    Kavo::Push::PushBaseRsp rsp = Kavo::Push::PushErrorMessage::RebuildPushRsp(1000900002);
    std::cout << rsp.GetInfo() << "\n" << Kavo::Push::PushLogger::LogGuard("192.168.1.10") << "\n";
    return rsp.Succeed() ? 1 : 0;
}
