#include "library/wimp/listwalk.h"

#include "library/wimp/gl/windowmessage.h"

int WalkList(int key, int marked, int count, int page)
{
    int to = 0;
    switch (key) {
    case KEY_UP:
        to = marked - 1;
        break;
    case KEY_DOWN:
        to = marked + 1;
        break;
    case KEY_PAGEUP:
        to = marked - page;
        break;
    case KEY_PAGEDOWN:
        to = marked + page;
        break;
    case KEY_HOME:
        break;
    case KEY_END:
        to = count - 1;
        break;
    default:
        return -1;
    }
    to = to < 0 ? 0 : to;
    return to < count ? to : count - 1;
}
