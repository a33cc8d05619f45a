# file: framework/mirrored_object.cpp
# tests: mirrored_object_test reflector_test
s/(next_ == nullptr ? owner_->members_.last_ : next_->previous_) = previous_;//
