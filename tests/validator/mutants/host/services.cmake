# Faults of a host's library as a whole, and of its lists.

add_host_mutant(needs-what-nobody-has
  SOURCE services.cpp
  REPLACE [[    return text == nullptr ? 0 : std::strlen(text);]]
  BY [[    std::size_t lengthThatNobodyKnows(const char*);
    return text == nullptr ? 0 : lengthThatNobodyKnows(text);]]
  CAUGHT_BY library.loads)

add_host_mutant(list-factory-misnamed
  SOURCE services.cpp
  REPLACE [[createKORLonglongList() {]]
  BY [[createKORLongLongList() {]]
  CAUGHT_BY library.exports-lists)

add_host_mutant(geometry-misnamed
  SOURCE services.cpp
  REPLACE [[double height(const KorRect& rect) {]]
  BY [[double heightOf(const KorRect& rect) {]]
  CAUGHT_BY library.exports-geometry geometry.sides)

add_host_mutant(length-misnamed
  SOURCE services.cpp
  REPLACE [[std::size_t kor_strlen(const char* text) {]]
  BY [[std::size_t korStrlen(const char* text) {]]
  CAUGHT_BY library.exports-files paths.lengths)

add_host_mutant(logger-misnamed
  SOURCE services.cpp
  REPLACE [[KOR::KorLoggerWrapper* loggerWrapper(std::int32_t) {]]
  BY [[KOR::KorLoggerWrapper* loggerWrapperOf(std::int32_t) {]]
  CAUGHT_BY library.exports-logger logger.stays-the-same)

add_host_mutant(task-factory-misnamed
  SOURCE Task.cpp
  REPLACE [[KOR::IKorBaseTask* createMediaAnalysisTask(KOR::IKORIntList* types) try {]]
  BY [[KOR::IKorBaseTask* createAnalysisTask(KOR::IKORIntList* types) try {]]
  CAUGHT_BY library.exports-tasks tasks.are-made-of-types)

add_host_mutant(list-counts-one-more
  SOURCE services.cpp
  REPLACE [[static_cast<std::int64_t>(elements_.size()); }]]
  BY [[static_cast<std::int64_t>(elements_.size()) + 1; }]]
  CAUGHT_BY lists.are-empty-at-first lists.keep-order lists.hold-thousands lists.keep-null
    lists.are-separate lists.are-made-on-threads)

add_host_mutant(list-index-of-32-bits
  SOURCE services.cpp
  REPLACE [[    Element at(std::int64_t index) const override {]]
  BY [[    Element at(std::int64_t wide) const override {
        const auto index = static_cast<std::int32_t>(wide);]]
  CAUGHT_BY lists.give-nothing-outside)

add_host_mutant(list-grows-at-its-begin
  SOURCE services.cpp
  REPLACE [[        elements_.push_back(element);]]
  BY [[        elements_.insert(elements_.begin(), element);]]
  CAUGHT_BY lists.keep-order)

add_host_mutant(list-takes-a-thousand
  SOURCE services.cpp
  REPLACE [[        elements_.push_back(element);]]
  BY [[        if (elements_.size() == 1000) return KOR::statusFailed;
        elements_.push_back(element);]]
  CAUGHT_BY lists.hold-thousands)

add_host_mutant(list-drops-null
  SOURCE services.cpp
  REPLACE [[        elements_.push_back(element);]]
  BY [[        if (element != Element()) elements_.push_back(element);]]
  CAUGHT_BY lists.keep-null lists.keep-order)

add_host_mutant(owning-list-frees-nothing
  SOURCE services.cpp
  REPLACE [[                ::operator delete(element);]]
  BY [[                static_cast<void>(element);]]
  CAUGHT_BY lists.owning-frees-elements)

add_host_mutant(owning-list-frees-with-any-release
  SOURCE services.cpp
  REPLACE [[private:
    ~List() override {]]
  BY [[    std::uint32_t release() override {
        if constexpr (ownsElements) {
            for (void* const element : elements_)
                ::operator delete(element);
            elements_.clear();
        }
        return Counted<KOR::IKORList<Element>>::release();
    }

private:
    ~List() override {]]
  CAUGHT_BY lists.owning-keeps-elements)

add_host_mutant(borrowing-list-frees
  SOURCE services.cpp
  REPLACE [[        if constexpr (ownsElements) {]]
  BY [[        if constexpr (std::is_pointer_v<Element>) {]]
  CAUGHT_BY lists.borrowing-frees-nothing)

add_host_mutant(one-list-for-all
  SOURCE services.cpp
  REPLACE [[    return new (std::nothrow) plain_host::List<std::int32_t>;]]
  BY [[    static auto* const list = new plain_host::List<std::int32_t>;
    list->addRef();
    return list;]]
  CAUGHT_BY lists.are-separate lists.count-their-references)
