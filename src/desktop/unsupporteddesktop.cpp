#include "desktop/unsupporteddesktop.h"

namespace desktop {

using namespace Qt::StringLiterals;

QCoro::Task<SetResult> UnsupportedDesktop::setPicture(Picture /*picture*/, Screen /*screen*/)
{
    co_return tl::make_unexpected(u"this desktop is not supported"_s);
}

} // namespace desktop
