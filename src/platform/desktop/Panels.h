// Asks the user for files or folders. The question is put, the call returns, and the answer comes later on the UI
// thread; a cancelled question is never answered. The window implements it with the desktop's own dialogs.
#pragma once

#include <QString>

#include <filesystem>
#include <functional>
#include <vector>

class Panels {
public:
    struct Request {
        bool files = false;
        bool folders = false;
        bool multiple = false;
        bool pictures = false; ///< of the files only pictures are offered
        bool archives = false; ///< of the files only ZIP archives are offered
        QString prompt; ///< text of the confirming button
        QString message; ///< what is to be chosen, may be empty

        [[nodiscard]] static Request onePicture(const QString &prompt)
        {
            Request request;
            request.files = true;
            request.pictures = true;
            request.prompt = prompt;
            return request;
        }
    };
    using Answer = std::function<void(std::vector<std::filesystem::path> chosen)>;

    virtual ~Panels() = default;
    virtual void open(const Request &request, Answer answered) = 0;

protected:
    Panels() = default;
    Panels(const Panels &) = default;
    Panels &operator=(const Panels &) = default;
};
