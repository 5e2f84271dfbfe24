#pragma once

#include "http/httpexchange.h"

#include <QUrl>
#include <QVariant>

class RadioModel;

/// Where a private station is: the host that its url names, by the scheme, the mount point and the port of
/// its own fields ("http" and no path where the first two are empty). What else the url carries stays, but
/// for its path and a user name. Not valid where these make up no URL.
QUrl privateStreamUrl(const RadioModel &model);

/// What goes with every request for a private station: the agent that `storedUserAgent` chooses, if any, and
/// always the credentials. An invalid value chooses the built-in agent, and one that stands for no choice
/// leaves the agent out.
HttpHeaders privateStreamHeaders(const RadioModel &model, const QVariant &storedUserAgent);
