#pragma once

namespace localradio {

/// What `--help-faults` prints.
inline constexpr char faultHelp[] = R"(What can be made to go wrong.

Any stream, /stream/ID or /private/ID, takes these parameters in its query.
They can be combined; a value that makes no sense is answered with status 400
and a line that says which.

  status=N            that status, 100 to 599, and a short text instead
  redirect=same       to the same stream without faults
  redirect=port       the same on the other port
  redirect=loop       to itself
  redirect=file       to file:///etc/passwd
  redirect=ADDRESS    to whatever else stands here
  body=html           a short web page
  body=random         random bytes without end, always the same ones
  body=zeros          zeros without end
  body=endless        the station itself, as fast as the client reads
  type=TEXT           another Content-Type
  close-after=BYTES   ends after so many bytes of the body, 0 for none
  reset-after=BYTES   resets the connection instead
  stall-after=BYTES   stays open instead, and silent
  rate=N              bytes a second, head included
  icy=ODDITY          for MP3 and AAC with "Icy-MetaData: 1"; old-head for all:
    bad-metaint         announces another interval than it keeps
    zero-metaint        announces 0, and has no titles
    huge-metaint        announces a number beyond 64 bits, and has no titles
    text-metaint        announces a word, and has no titles
    unterminated        the title has no closing quote
    latin1              the title is not UTF-8
    nul                 the title has NULs within
    long                the title is as long as can be
    flood               a new title every 256 bytes
    old-head            "ICY 200 OK" for a status line

/private/ID answers status 401 unless the request brings the user and the
password of --user and --password.

/outage?seconds=N resets all connections on the first port and refuses new
ones for N seconds, at most 60. The second port stays.

/refused is a playlist that leads to a port where nobody listens.

/playlist is a playlist made to order. It takes close-after, reset-after,
stall-after and rate as well, and these:

  entry=ADDRESS       an entry, as it stands; any number of them
  itself=1            an entry with its own address
  each-other=1        an entry with the address of a twin that names it back
  form=pls|m3u        pls if left out
  eol=lf|crlf|cr      how lines end, lf if left out
  bom=1               begins with a byte order mark
  type=TEXT           another Content-Type
  pad=BYTES           so many bytes of comments before the entries, 16 MiB at
                      most
  endless=1           comments without end after the entries

As in any query, an "&" or "+" within a value is written %26 or %2B.

With --faults, one station for each fault that is worth hearing stands at the
end of the catalogue; a search for "fault" finds them.
)";

} // namespace localradio
